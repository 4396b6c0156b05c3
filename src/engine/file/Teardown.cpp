#include "engine/file/Teardown.h"

#include "engine/pdf/Qpdf.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace {

class TTeardown {
public:
    /// libqpdf's statics that freeing needs are made by a first use, which must come before this object's:
    /// at exit they then outlive the thread.
    TTeardown() { QPDF::create()->emptyPDF(); }

    ~TTeardown() {
        {
            const std::lock_guard lock(FMutex);
            FStopping = true;
        }
        FWake.notify_one();
        if (FThread.joinable())
            FThread.join();
    }

    void Add(std::shared_ptr<void> object) {
        {
            const std::lock_guard lock(FMutex);
            FWaiting.push_back(std::move(object));
            if (!FThread.joinable())
                FThread = std::thread([this] { Run(); });
        }
        FWake.notify_one();
    }

private:
    void Run() {
        std::unique_lock lock(FMutex);
        for (;;) {
            FWake.wait(lock, [this] { return FStopping || !FWaiting.empty(); });
            if (FWaiting.empty())
                return;
            std::vector<std::shared_ptr<void>> taken = std::move(FWaiting);
            FWaiting.clear();
            lock.unlock();
            taken.clear();
            lock.lock();
        }
    }

    std::mutex FMutex;
    std::condition_variable FWake;
    std::vector<std::shared_ptr<void>> FWaiting;
    bool FStopping = false;
    std::thread FThread; // started by the first object
};

} // namespace

void DisposeLater(std::shared_ptr<void> object) {
    static TTeardown teardown;
    teardown.Add(std::move(object));
}
