#pragma once
// Running this thread's queued messages, as its event loop would.
#include "platform/MessageQueue.h"

/// Delivers until `done`, at most 10 s.
inline bool DeliverUntil(const std::function<bool()>& done) {
    return TMessageQueue::OfThisThread()->DeliverUntil(done, 10'000);
}

/// Delivers what comes within the time.
inline void DeliverFor(int ms) {
    TMessageQueue::OfThisThread()->DeliverUntil([] { return false; }, ms);
}
