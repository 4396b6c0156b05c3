#pragma once
// TWatchThread: waits for changes in a folder and posts one message for each burst of them.
//
// A change that follows another within 10 ms belongs to the same burst. The thread and its maker share the
// object, and whichever lets go of it last frees it.
#include "platform/ChangeNotification.h"
#include "platform/HiddenWindow.h"

#include <atomic>
#include <memory>
#include <mutex>

inline constexpr Cardinal WM_FOLDER_CHANGED = 1025;

struct TWatchOrder {
    TWindowHandle Owner = 0; ///< where WM_FOLDER_CHANGED goes
    string Directory;
    TSubtree Subtree = TSubtree::No;
    Cardinal Filters = 0; ///< of TChangeFilter
    TOpenChangeNotification Open = FindFirstChangeNotification;
};

class TWatchThread : public std::enable_shared_from_this<TWatchThread> {
public:
    static constexpr int BurstMs = 10;  ///< changes closer than this are one
    static constexpr int DrainMs = 100; ///< quiet that ends a series of changes of directory

    /// Starts the thread, at the lowest priority.
    [[nodiscard]] static std::shared_ptr<TWatchThread> Start(TWatchOrder order);

    /// Watches another folder from now on; the same one changes nothing.
    void SetDirectory(string directory);
    /// Returns when the thread has left its loop, which takes up to about 100 ms.
    void Terminate();

private:
    explicit TWatchThread(TWatchOrder order) : FOrder(std::move(order)) {}

    void Run() noexcept;
    void Execute();
    void WaitLoop(TChangeNotification& changes);
    void Drain();
    [[nodiscard]] string Directory();
    [[nodiscard]] bool Terminated() const { return FTerminated.load(std::memory_order_relaxed); }

    TWatchOrder FOrder; ///< Directory changes under FLock, the rest never
    std::mutex FLock;
    TEvent FBreakEvent;
    std::atomic<bool> FTerminated = false;
    std::atomic<bool> FFinished = false; ///< the thread's last word
};
