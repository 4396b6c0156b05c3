#include "base/Journal.h"

#include "base/Printable.h"

#include <QHash>

#include <mutex>
#include <unistd.h>

namespace {

/// What was written last, by subject. Never destroyed: threads may outlast statics.
struct TTold {
    std::mutex Lock;
    QHash<string, string> Lines;
};

TTold& Told() {
    static auto& told = *new TTold;
    return told;
}

} // namespace

void JournalLine(const string& text) noexcept {
    try {
        string plain = text;
        plain.replace(u'\n', u' ').replace(u'\r', u' ');
        const NarrowString line = Narrow(Printable(plain)).append('\n');
        // One write, so that lines of several threads don't mix; nothing can be done where it fails.
        [[maybe_unused]] const ssize_t written =
            ::write(STDERR_FILENO, line.constData(), size_t(line.size()));
    } catch (...) {
    }
}

void JournalChange(const string& subject, const string& text) noexcept {
    constexpr qsizetype Limit = 1000; // subjects; then some are told again
    try {
        {
            TTold& told = Told();
            const std::lock_guard guard(told.Lock);
            const auto known = told.Lines.constFind(subject);
            if (known != told.Lines.constEnd() && *known == text)
                return;
            if (told.Lines.size() >= Limit)
                told.Lines.clear();
            told.Lines.insert(subject, text);
        }
        JournalLine(text);
    } catch (...) {
    }
}

void JournalSettled(const string& subject) noexcept {
    TTold& told = Told();
    const std::lock_guard guard(told.Lock);
    told.Lines.remove(subject);
}
