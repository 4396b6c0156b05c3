#pragma once
// TWatchThread: waits for changes in a folder and posts one message for each burst of them.
//
// A change that follows another within 10 ms belongs to the same burst.
#include "platform/ChangeNotification.h"
#include "platform/HiddenWindow.h"
#include "platform/WorkerThread.h"

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

class TWatchThread final : public TWorkerThread {
public:
    static constexpr int BurstMs = 10;  ///< changes closer than this are one
    static constexpr int DrainMs = 100; ///< quiet that ends a series of changes of directory

    /// Starts the thread, at the lowest priority; the folder is watched from here on.
    explicit TWatchThread(TWatchOrder order);
    /// Waits until the thread has left its loop.
    ~TWatchThread() override { Stop(); }

    /// Watches another folder from now on; the same one changes nothing.
    void SetDirectory(string directory);
    void Terminate() override;

private:
    void Execute() override;
    void WaitLoop(TChangeNotification& changes);
    void Drain();
    [[nodiscard]] std::unique_ptr<TChangeNotification> Open();
    [[nodiscard]] string Directory();

    TWatchOrder FOrder; ///< Directory changes under FLock, the rest never
    std::mutex FLock;
    std::unique_ptr<TChangeNotification> FFirst; ///< the thread's from its start on
    TEvent FBreakEvent;
};
