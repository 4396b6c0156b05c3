#include "base/Journal.h"

#include <unistd.h>

void JournalLine(const string& text) noexcept {
    try {
        NarrowString line = Narrow(text);
        line.replace('\n', ' ').replace('\r', ' ');
        line.append('\n');
        // One write, so that lines of several threads don't mix; nothing can be done where it fails.
        [[maybe_unused]] const ssize_t written =
            ::write(STDERR_FILENO, line.constData(), size_t(line.size()));
    } catch (...) {
    }
}
