#pragma once
// The world of the run as a test plays it: ticks come when they are told to, every file is ready at once, and
// hints are noted.
#include "agent/AgentStatus.h"
#include "agent/RunHost.h"
#include "base/FolderListing.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

/// Lets as many ticks pass as the test asks for.
class TPlayedClock : public TRunClock {
public:
    [[nodiscard]] QDateTime Now() override {
        const std::lock_guard lock(FMutex);
        return FNow;
    }
    /// Follows the played time of day, unless it is to run by itself.
    [[nodiscard]] qint64 Steady() override {
        const std::lock_guard lock(FMutex);
        const qint64 run =
            SteadyRuns ? std::chrono::steady_clock::now().time_since_epoch() / std::chrono::milliseconds(1)
                       : 0;
        return FMilliseconds + run;
    }
    /// For what takes real time, as the limits of processes do. Set before the run begins.
    bool SteadyRuns = false;
    void WaitTick() override {
        std::unique_lock lock(FMutex);
        FIdle = true;
        FChanged.notify_all();
        FChanged.wait(lock, [this] { return FAllowed > 0 || FAwake; });
        if (FAllowed > 0)
            --FAllowed;
        Set(FNow.addSecs(1));
        FIdle = false;
    }
    void Wake() override {
        const std::lock_guard lock(FMutex);
        FAwake = true;
        FChanged.notify_all();
    }
    void Play(int ticks) {
        std::unique_lock lock(FMutex);
        FAllowed = ticks;
        FIdle = false;
        FChanged.notify_all();
        FChanged.wait(lock, [this] { return FIdle && FAllowed == 0; });
    }
    /// Serves another thread after one was told to end.
    void Restart() {
        const std::lock_guard lock(FMutex);
        FAwake = false;
        FIdle = false;
    }
    /// One tick, without waiting for its end.
    void PlayOne() {
        const std::lock_guard lock(FMutex);
        FAllowed = 1;
        FChanged.notify_all();
    }
    void SetNow(const QDateTime& now) {
        const std::lock_guard lock(FMutex);
        Set(now);
    }

private:
    void Set(const QDateTime& now) {
        FNow = now;
        FMilliseconds = now.toMSecsSinceEpoch();
    }

    std::mutex FMutex;
    std::condition_variable FChanged;
    QDateTime FNow{QDate(2026, 11, 15), QTime(12, 0)};
    qint64 FMilliseconds = FNow.toMSecsSinceEpoch(); // asked for often, and dear for times of a zone
    int FAllowed = 0;
    bool FIdle = false;
    bool FAwake = false;
};

/// Every file is ready at once.
class TPlainFiles : public TFolderFiles {
public:
    [[nodiscard]] QStringList ReadyFiles(const TFolder& folder, qint64, const TQuietTime&) override {
        return ListFiles(folder, QStringLiteral("*.pdf"));
    }
    [[nodiscard]] bool IsStillReady(const TFolder&, const TSourceFile&, qint64, const TQuietTime&) override {
        return true;
    }
    [[nodiscard]] bool IsHeld(const TFolder&, const TSourceFile&) override { return false; }
};

class TNotedHint : public TTrayHint {
public:
    void SetHint(const string& text) override {
        const std::lock_guard lock(FMutex);
        if (FHints.isEmpty() || FHints.last() != text)
            FHints.append(text);
        if (OnHint)
            OnHint(text);
    }
    /// Called on the run's thread: what happens at that moment.
    std::function<void(const string&)> OnHint;
    [[nodiscard]] QStringList Hints() {
        const std::lock_guard lock(FMutex);
        return FHints;
    }

private:
    std::mutex FMutex;
    QStringList FHints;
};
