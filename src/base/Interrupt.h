#pragma once
// Lets long work in the lower layers end early when the program is told to stop, without knowing by what.
#include "base/Exceptions.h"

/// Work was cut short because the program is to stop. It says nothing of what was worked on.
class EInterrupted : public Exception {
public:
    EInterrupted() : Exception(QStringLiteral("Stopped before the work was done.")) {}
};

using TInterruptTest = bool (*)();

/// What tells whether work is to be cut short; null, as at the start, for never. Any thread may ask it.
void SetInterruptTest(TInterruptTest test);

/// Raises EInterrupted if work is to be cut short. Cheap; asked every few thousand bytes at most.
void RequireGoingOn();
