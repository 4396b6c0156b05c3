#pragma once
// Signals of the process: requests to end reach the event loop through a pipe of the process to itself. (A
// signalfd would need the signals blocked, and a blocked mask leaks into the programs that scripts start.)
#include "platform/Descriptor.h"

/// Makes a broken connection or a file-size limit an error of the call that met it, not the process's end.
/// Programs that this process starts inherit it unless their start resets it.
void IgnoreDisruptiveSignals();

/// While it lives, SIGTERM, SIGINT and SIGHUP no longer end the process. One at a time.
class TTerminationSignals {
public:
    /// Raises Exception when the system has no descriptor left.
    TTerminationSignals();
    /// Puts the former handling back.
    ~TTerminationSignals();
    TTerminationSignals(const TTerminationSignals&) = delete;
    TTerminationSignals& operator=(const TTerminationSignals&) = delete;

    /// Readable when a signal has come.
    [[nodiscard]] int Descriptor() const { return FReadEnd.Number(); }
    /// True if any has come since the last call.
    [[nodiscard]] bool Take();

private:
    TDescriptor FReadEnd;
    TDescriptor FWriteEnd;
};
