#include "platform/StopSignal.h"

#include "base/Exceptions.h"

#include <cerrno>
#include <sys/eventfd.h>

TStopSignal::TStopSignal() : FCounter(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!FCounter)
        throw EFileError("make", "event", errno);
}

void TStopSignal::Raise() {
    const std::lock_guard guard(FLock);
    if (!Raised())
        FRaisedAt.store(std::chrono::steady_clock::now());
    FRaised.store(true);
    [[maybe_unused]] const int written = ::eventfd_write(FCounter.Number(), 1);
    for (const auto& [listener, called] : FListeners)
        called();
}

bool TStopSignal::IsOverdue() const {
    return Raised() && std::chrono::steady_clock::now() - FRaisedAt.load() > std::chrono::seconds(1);
}

void TStopSignal::Lower() {
    const std::lock_guard guard(FLock);
    FRaised.store(false);
    eventfd_t count = 0;
    [[maybe_unused]] const int read = ::eventfd_read(FCounter.Number(), &count);
}

TStopSignal& StopSignal() {
    static TStopSignal signal;
    return signal;
}

TStopListener::TStopListener(std::function<void()> called) {
    TStopSignal& signal = StopSignal();
    const std::lock_guard guard(signal.FLock);
    signal.FListeners.emplace(this, std::move(called));
}

TStopListener::~TStopListener() { // NOLINT(bugprone-exception-escape)
    TStopSignal& signal = StopSignal();
    const std::lock_guard guard(signal.FLock);
    signal.FListeners.erase(this);
}
