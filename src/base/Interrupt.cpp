#include "base/Interrupt.h"

#include <atomic>

namespace {
std::atomic<TInterruptTest> Test = nullptr;
}

void SetInterruptTest(TInterruptTest test) {
    Test = test;
}

void RequireGoingOn() {
    const TInterruptTest test = Test.load(std::memory_order_relaxed);
    if (test != nullptr && test())
        throw EInterrupted();
}
