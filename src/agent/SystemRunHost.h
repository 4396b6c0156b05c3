#pragma once
// The run's view of the real system.
#include "agent/RunHost.h"
#include "base/BusyFile.h"

#include <QSet>

#include <condition_variable>
#include <mutex>

class TSystemClock : public TRunClock {
public:
    [[nodiscard]] QDateTime Now() override { return QDateTime::currentDateTime(); }
    void WaitTick() override;
    void Wake() override;

private:
    std::mutex FMutex;
    std::condition_variable FWoken;
    bool FAwake = false;
};

class TSystemFolderFiles : public TFolderFiles {
public:
    [[nodiscard]] QStringList ReadyFiles(const string& folder, qint64 now) override;

private:
    TBusyFileTest FBusy;
    QSet<string> FWarned; // folders with names that can't be read as text
};
