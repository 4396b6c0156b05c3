#pragma once
// Joins a thread's message queue, and whatever else has a descriptor, to its Qt event loop.
#include <QObject>

#include <functional>

class TMessagePump : public QObject {
public:
    /// Delivers the calling thread's queue from now on. The application object must exist.
    TMessagePump();

    /// Calls `ready` on this thread whenever the descriptor is readable. What escapes from it, or from a
    /// delivered message, becomes a line in the journal: nothing may pass through the event loop.
    void Watch(int descriptor, std::function<void()> ready);
};
