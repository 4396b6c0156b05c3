#pragma once
// What the run needs from outside, narrow enough for a test to play it.
#include "base/BusyFile.h"
#include "base/SourceFile.h"

#include <QDateTime>
#include <QStringList>

/// Time as the run sees it. Called on the run's thread, but for Wake.
class TRunClock {
public:
    virtual ~TRunClock() = default;
    /// Local time.
    [[nodiscard]] virtual QDateTime Now() = 0;
    /// Milliseconds since some start, which no change of the clock touches; time spent suspended counts.
    [[nodiscard]] virtual qint64 Steady() = 0;
    /// Waits for the next tick, a second, or until Wake.
    virtual void WaitTick() = 0;
    /// Ends a wait, and every later one, at once; the run is about to end. From any thread.
    virtual void Wake() = 0;
};

/// Finds the files that are ready to be worked on.
class TFolderFiles {
public:
    virtual ~TFolderFiles() = default;
    /// Names of the "*.pdf" directly in `folder` that can be read and that nobody is still writing, in the
    /// order in which they are served. `now` is in nanoseconds since 1970. Raises EFileError.
    [[nodiscard]] virtual QStringList ReadyFiles(const TFolder& folder, qint64 now,
                                                 const TQuietTime& quiet) = 0;
    /// Whether that still holds of one of them, now that it is open.
    [[nodiscard]] virtual bool IsStillReady(const TFolder& folder, const TSourceFile& file, qint64 now,
                                            const TQuietTime& quiet) = 0;
    /// Whether anybody has the open file open for writing.
    [[nodiscard]] virtual bool IsHeld(const TFolder& folder, const TSourceFile& file) = 0;
};

/// Where the run says what it is doing.
class TTrayHint {
public:
    virtual ~TTrayHint() = default;
    /// From the run's thread; must not wait for another.
    virtual void SetHint(const string& text) = 0;
    /// Once a tick, when the run's status has been brought up to date. Likewise.
    virtual void StatusTold() {}
};

class TAgentLedger;
class TAgentStatus;
class TPauses;

struct TRunHost {
    TRunClock& Clock;
    TFolderFiles& Files;
    TTrayHint& Hint;
    TAgentStatus& Status;
    string StateFolder = {};        ///< where a run notes the file at work; empty: nowhere
    TPauses* Pauses = nullptr;      ///< null: nothing is paused
    TAgentLedger* Ledger = nullptr; ///< null: nobody keeps what becomes of files
    bool ReasonFiles = false;       ///< a file that failed has its reason beside it
};

/// The application's title, which is also the hint of an idle run.
[[nodiscard]] inline string ApplicationTitle() {
    return QStringLiteral("Morvane Folder Watcher");
}
