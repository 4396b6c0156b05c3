#include "platform/WorkerThread.h"

#include "base/Exceptions.h"
#include "base/Journal.h"
#include "platform/MessageQueue.h"

#include <chrono>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

void DescribeThisThread(const char* name, TThreadPriority priority) {
    ::pthread_setname_np(::pthread_self(), name);
    // Priorities are a thread's own here. Raising one takes a privilege that most users lack.
    if (priority != TThreadPriority::Normal)
        ::setpriority(PRIO_PROCESS, id_t(::gettid()), priority == TThreadPriority::Lowest ? 19 : -20);
}

void TWorkerThread::Start() {
    FThread = std::thread([this] { Run(); });
}

void TWorkerThread::Stop() {
    Terminate();
    WaitFor();
}

void TWorkerThread::Run() noexcept {
    DescribeThisThread(FName, FPriority);
    try {
        Execute();
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("The thread \"%1\" ended: %2").arg(QLatin1String(FName), MessageOf(e)));
    } catch (...) {
        JournalLine(QStringLiteral("The thread \"%1\" ended.").arg(QLatin1String(FName)));
    }
    FFinished.store(true, std::memory_order_release);
}

void TWorkerThread::Terminate() {
    {
        const std::lock_guard guard(FSleepLock); // or a thread about to sleep would miss the call below
        FTerminated.store(true, std::memory_order_relaxed);
    }
    FWake.notify_all();
}

void TWorkerThread::WaitFor() {
    if (FThread.joinable())
        FThread.join();
}

void TWorkerThread::WaitForDelivering(const std::function<void()>& meanwhile) {
    const auto finished = [&] {
        meanwhile();
        return Finished();
    };
    while (FThread.joinable() && !Finished()) {
        try {
            TMessageQueue::OfThisThread()->DeliverUntil(finished, WaitForever);
        } catch (const std::exception& e) {
            JournalLine(QStringLiteral("Unhandled exception: %1").arg(MessageOf(e)));
        }
    }
    WaitFor();
}

void TWorkerThread::Sleep(int ms) {
    std::unique_lock lock(FSleepLock);
    FWake.wait_for(lock, std::chrono::milliseconds(ms), [this] { return Terminated(); });
}

void TWorkerThread::WaitUntil(const std::function<bool()>& isSo) {
    std::unique_lock lock(FSleepLock);
    FWake.wait(lock, [&] { return Terminated() || isSo(); });
}

void TWorkerThread::Wake() {
    {
        const std::lock_guard guard(FSleepLock); // as in Terminate
    }
    FWake.notify_all();
}
