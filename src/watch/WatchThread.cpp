#include "watch/WatchThread.h"

TWatchThread::TWatchThread(TWatchOrder order)
    : TWorkerThread("folder watch", TThreadPriority::Lowest), FOrder(std::move(order)) {
    FFirst = Open(); // by the maker, so that no change after this call is missed
    Start();
}

void TWatchThread::SetDirectory(string directory) {
    {
        const std::lock_guard guard(FLock);
        if (directory == FOrder.Directory)
            return;
        FOrder.Directory = std::move(directory);
    }
    FBreakEvent.Set();
}

string TWatchThread::Directory() {
    const std::lock_guard guard(FLock);
    return FOrder.Directory;
}

void TWatchThread::Terminate() {
    TWorkerThread::Terminate();
    FBreakEvent.Set();
}

void TWatchThread::Execute() {
    auto changes = std::move(FFirst);
    while (!Terminated()) {
        if (changes)
            WaitLoop(*changes);
        else // nothing to wait for until there is another folder, or the end
            [[maybe_unused]]
            const bool broken = WaitForSingleObject(FBreakEvent, WaitForever);
        changes.reset(); // before the next: the system gives a user only so many
        if (!Terminated())
            changes = Open();
    }
}

std::unique_ptr<TChangeNotification> TWatchThread::Open() {
    return FOrder.Open(Directory(), FOrder.Subtree, FOrder.Filters);
}

void TWatchThread::WaitLoop(TChangeNotification& changes) {
    while (!Terminated()) {
        if (WaitForMultipleObjects({&FBreakEvent, &changes}, WaitForever) != 1) {
            Drain();
            return;
        }
        changes.FindNext();
        if (!Terminated() && WaitForSingleObject(changes, BurstMs))
            continue; // the burst goes on; the notification stays signalled, so the wait above won't wait
        if (Terminated())
            return;
        PostMessage(FOrder.Owner, {.Number = WM_FOLDER_CHANGED});
    }
}

void TWatchThread::Drain() {
    while (!Terminated() && WaitForSingleObject(FBreakEvent, DrainMs)) {
    }
}
