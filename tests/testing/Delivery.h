#pragma once
// Running this thread's queued messages, as its event loop would.
#include "platform/MessageQueue.h"

/// Delivers until `done`. False after a minute, in which a busy machine gets anything done.
inline bool DeliverUntil(const std::function<bool()>& done) {
    return TMessageQueue::OfThisThread()->DeliverUntil(done, 60'000);
}

/// Delivers what comes within the time.
inline void DeliverFor(int ms) {
    TMessageQueue::OfThisThread()->DeliverUntil([] { return false; }, ms);
}
