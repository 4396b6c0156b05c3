#include "platform/Signals.h"

#include "base/Exceptions.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>

namespace {

// A session that ends sends its processes SIGTERM and SIGHUP at once; a terminal that goes, SIGHUP alone.
constexpr std::array Numbers = {SIGTERM, SIGINT, SIGHUP};
std::atomic<int> WriteEnd = -1;
std::array<struct sigaction, Numbers.size()> FormerActions;

/// Only what is allowed inside a signal handler.
void HandleSignal(int /*number*/) {
    const int error = errno;
    const char byte = 0;
    // A full pipe means that enough is on its way.
    [[maybe_unused]] const ssize_t written = ::write(WriteEnd.load(), &byte, 1);
    errno = error;
}

} // namespace

void IgnoreDisruptiveSignals() {
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGXFSZ, SIG_IGN);
}

TTerminationSignals::TTerminationSignals() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        throw EFileError("make", "pipe", errno);
    FReadEnd = TDescriptor(ends[0]);
    FWriteEnd = TDescriptor(ends[1]);
    WriteEnd.store(ends[1]);
    struct sigaction action {};
    action.sa_handler = HandleSignal;
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < Numbers.size(); ++i) {
        ::sigaction(Numbers[i], nullptr, &FormerActions[i]);
        // What was ignored from the start stays so: somebody wants it to, as nohup does.
        if (FormerActions[i].sa_handler != SIG_IGN)
            ::sigaction(Numbers[i], &action, nullptr);
    }
}

TTerminationSignals::~TTerminationSignals() {
    for (size_t i = 0; i < Numbers.size(); ++i)
        ::sigaction(Numbers[i], &FormerActions[i], nullptr);
    WriteEnd.store(-1);
}

bool TTerminationSignals::Take() {
    bool taken = false;
    char bytes[64];
    while (::read(FReadEnd.Number(), bytes, sizeof bytes) > 0)
        taken = true;
    return taken;
}
