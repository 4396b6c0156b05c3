#include "base/FaultPoint.h"

#include <atomic>

namespace {
std::atomic<TFaultHook> Hook = nullptr;
}

void SetFaultHook(TFaultHook hook) {
    Hook.store(hook, std::memory_order_relaxed);
}

int FaultPoint(const char* call) {
    const TFaultHook hook = Hook.load(std::memory_order_relaxed);
    return hook == nullptr ? 0 : hook(call);
}
