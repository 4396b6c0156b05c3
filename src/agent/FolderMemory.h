#pragma once
// What a run remembers of a folder from one turn to the next: which files wait and why, how long the folder
// itself rests, what was said last.
#include "agent/FolderMark.h"
#include "base/SourceFile.h"

#include <QHash>
#include <QSet>
#include <QStringList>

/// Grows from a second to a minute, doubling.
class TPause {
public:
    void Lengthen(qint64 now);
    void End() { *this = {}; }
    [[nodiscard]] bool Over(qint64 now) const { return now >= FUntil; }

private:
    qint64 FLength = 0;
    qint64 FUntil = 0;
};

/// A file that stayed in its folder.
struct TWaitingFile {
    TFileState State;       ///< a file that differs from it is another, and begins anew
    string Reason;          ///< as told
    TPause Pause;           ///< after which it is tried again
    bool ForGood = false;   ///< not tried again while neither it nor the folder's rights change
    quint64 Rights = 0;     ///< of its folder
    bool Published = false; ///< its result lies in place: only the rest of its way is left
    bool Claimed = false;   ///< in the ledger, which has more to say of that
    int ReadFailures = 0;   ///< of its disk
};

struct TFolderMemory {
    QHash<string, TWaitingFile> Waiting; ///< by name
    QSet<string> Protected;              ///< by name, those that a password keeps here
    TPause Pause;                        ///< of the whole folder
    QStringList LastBlock;               ///< of the run log
    bool Paused = false;                 ///< by command
    string Trouble;                      ///< why the folder can't be served, as told; empty while it can
    THeartbeat Heartbeat;
    qint64 SweptAt = -1; ///< by the steady clock; negative: not yet
};
