#include "watch/WatchThread.h"

#include "base/Exceptions.h"
#include "base/Journal.h"
#include "platform/WorkerThread.h"

#include <chrono>
#include <thread>

std::shared_ptr<TWatchThread> TWatchThread::Start(TWatchOrder order) {
    std::shared_ptr<TWatchThread> watch(new TWatchThread(std::move(order)));
    watch->FFirst = watch->Open(); // by the maker, so that no change after this call is missed
    std::thread([watch] { watch->Run(); }).detach();
    return watch;
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
    FTerminated.store(true, std::memory_order_relaxed);
    FBreakEvent.Set();
    while (!FFinished.load(std::memory_order_acquire))
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

void TWatchThread::Run() noexcept {
    DescribeThisThread("folder watch", TThreadPriority::Lowest);
    try {
        Execute();
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("The folder watch ended: %1").arg(MessageOf(e)));
    }
    FFinished.store(true, std::memory_order_release);
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
