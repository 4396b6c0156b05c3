#pragma once
// The run's view of the real system.
#include "agent/RunHost.h"

#include <QSet>

#include <condition_variable>
#include <mutex>

class TSystemClock : public TRunClock {
public:
    [[nodiscard]] QDateTime Now() override { return QDateTime::currentDateTime(); }
    [[nodiscard]] qint64 Steady() override;
    void WaitTick() override;
    void Wake() override;

private:
    std::mutex FMutex;
    std::condition_variable FWoken;
    bool FAwake = false;
};

class TSystemFolderFiles : public TFolderFiles {
public:
    [[nodiscard]] QStringList ReadyFiles(const TFolder& folder, qint64 now, const TQuietTime& quiet) override;
    [[nodiscard]] bool IsStillReady(const TFolder& folder, const TSourceFile& file, qint64 now,
                                    const TQuietTime& quiet) override;
    [[nodiscard]] bool IsHeld(const TFolder& folder, const TSourceFile& file) override;

private:
    /// Files that aren't ready, by name, and since when in nanoseconds since 1970.
    using TBusySince = QHash<string, qint64>;
    void NoteBusy(const TFolder& folder, const string& name, qint64 now, TBusySince& busy);
    void NoteNameless(const TFolder& folder, int count);

    TBusyFileTest FBusy;
    QSet<string> FWarned;               // folders with names that can't be read as text
    QHash<string, TBusySince> FWaiting; // by folder
};
