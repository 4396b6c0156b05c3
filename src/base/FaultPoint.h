#pragma once
// The seam through which tests stop the process, or fail a call, at each file-system call on a file's road.
#include <cerrno>

/// Gets the name of the call that comes next, as in "rename". A result other than 0 is an errno value with
/// which that call then fails without being made.
using TFaultHook = int (*)(const char* call);

/// Null, the state at start, makes every point free of cost but one load. Not for concurrent change.
void SetFaultHook(TFaultHook hook);
[[nodiscard]] int FaultPoint(const char* call);

/// Makes a system call behind its fault point: its result, or -1 with errno as the hook says.
template <class TCall> [[nodiscard]] auto WithFaultPoint(const char* name, TCall call) -> decltype(call()) {
    if (const int error = FaultPoint(name); error != 0) {
        errno = error;
        return -1;
    }
    return call();
}
