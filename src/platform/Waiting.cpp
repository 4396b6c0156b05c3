#include "platform/Waiting.h"

#include "base/Exceptions.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <vector>

namespace {

using TInstant = std::chrono::steady_clock::time_point;

/// Milliseconds until `deadline`, rounded up so that a wait never ends early.
int Remaining(TInstant deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - TInstant::clock::now());
    return int(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

int FirstSignalled(std::initializer_list<TWaitable*> objects) {
    int index = 0;
    for (TWaitable* object : objects) {
        if (object->Take())
            return index;
        ++index;
    }
    return WaitTimeout;
}

} // namespace

TEvent::TEvent() : FCounter(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!FCounter)
        throw EFileError("make", "eventfd", errno);
}

void TEvent::Set() {
    const std::uint64_t one = 1;
    // Fails only where the counter is full, and then the event is signalled anyway.
    [[maybe_unused]] const ssize_t written = ::write(FCounter.Number(), &one, sizeof one);
}

bool TEvent::Take() {
    std::uint64_t count = 0;
    return ::read(FCounter.Number(), &count, sizeof count) == ssize_t(sizeof count);
}

int WaitForMultipleObjects(std::initializer_list<TWaitable*> objects, int timeoutMs) {
    const TInstant deadline = TInstant::clock::now() + std::chrono::milliseconds(std::max(timeoutMs, 0));
    std::vector<pollfd> polled;
    for (const TWaitable* object : objects)
        polled.push_back({object->Descriptor(), POLLIN, 0});
    while (true) {
        // Looked at before each wait: an object may be signalled with nothing left to read, or have
        // something to read that signals nothing.
        if (const int index = FirstSignalled(objects); index >= 0)
            return index;
        const int wait = timeoutMs == WaitForever ? -1 : Remaining(deadline);
        if (wait == 0)
            return WaitTimeout;
        if (::poll(polled.data(), polled.size(), wait) < 0 && errno != EINTR)
            return WaitFailed;
    }
}

bool WaitForSingleObject(TWaitable& object, int timeoutMs) {
    return WaitForMultipleObjects({&object}, timeoutMs) == 0;
}
