#include "platform/MessageQueue.h"

#include <algorithm>
#include <chrono>

std::shared_ptr<TMessageQueue> TMessageQueue::OfThisThread() {
    thread_local const auto queue = std::make_shared<TMessageQueue>();
    return queue;
}

bool TMessageQueue::Post(TCall call) {
    const std::lock_guard guard(FLock);
    if (FCalls.size() >= Limit)
        return false;
    FCalls.push_back(std::move(call));
    if (FCalls.size() == 1)
        FSignal.Set();
    return true;
}

TMessageQueue::TCall TMessageQueue::Next() {
    const std::lock_guard guard(FLock);
    if (FCalls.empty())
        return nullptr;
    TCall call = std::move(FCalls.front());
    FCalls.pop_front();
    return call;
}

int TMessageQueue::Deliver() {
    size_t batch = 0;
    {
        const std::lock_guard guard(FLock);
        batch = FCalls.size();
        // Taken here and set again below, so that the descriptor tells the truth whatever a call does.
        [[maybe_unused]] const bool signalled = FSignal.Take();
    }
    struct TSignalRest {
        TMessageQueue& Queue;
        ~TSignalRest() {
            const std::lock_guard guard(Queue.FLock);
            if (!Queue.FCalls.empty())
                Queue.FSignal.Set();
        }
    } rest{*this};
    int delivered = 0;
    for (; size_t(delivered) < batch; ++delivered) {
        const TCall call = Next();
        if (!call) // a call delivered the rest itself, as a modal box does
            break;
        call();
    }
    return delivered;
}

bool TMessageQueue::DeliverUntil(const std::function<bool()>& done, int timeoutMs) {
    constexpr int Beat = 10;
    using TSteady = std::chrono::steady_clock;
    const auto deadline = TSteady::now() + std::chrono::milliseconds(std::max(timeoutMs, 0));
    while (true) {
        Deliver();
        if (done())
            return true;
        if (timeoutMs != WaitForever && TSteady::now() >= deadline)
            return false;
        if (WaitForSingleObject(FSignal, Beat))
            FSignal.Set(); // Deliver takes it
    }
}
