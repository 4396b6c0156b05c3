#pragma once
// One pass over the watched folders: which are due, which can be served, in which order their files are
// worked on, and what the log says of the others. What becomes of a file is agent/FolderTurn's.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "agent/FolderMemory.h"
#include "agent/RunHost.h"
#include "agent/RunLog.h"
#include "agent/WorkMarks.h"
#include "agent/WorkPlace.h"
#include "agent/Workers.h"

#include <functional>

/// What a pass works with. The lists don't change while it runs.
struct TPassInput {
    const TPDFWatchedFolders& Folders;
    TPDFActionManager& Manager;
    string LogFile;
    qint32 TickCounter;
    /// Asked each second of a pass over several folders at once: the next value of the tick counter, by which
    /// more folders fall due, or nothing where the pass is to come to its end. None: it isn't asked.
    std::function<std::optional<qint32>()> NextTick = {};
};

class TFolderPass {
public:
    /// With a count of 0 the files are worked on here.
    TFolderPass(const TRunHost& host, std::function<bool()> terminated, const TWorkerSettings& workers = {});

    /// Serves every folder whose turn it is. One that can't be served is noted, and the others go on.
    void Run(const TPassInput& input);

private:
    class TPass;

    void Sweep(const TPDFWatchedFolder& folder);
    void LookForOthers(const TPDFWatchedFolder& folder);
    [[nodiscard]] bool NotePause(const TPDFWatchedFolder& folder);
    void NoteTrouble(const TPDFWatchedFolder& folder, const string& trouble);
    [[nodiscard]] TFolderMemory& MemoryOf(const TPDFWatchedFolder& folder) { return FMemory[folder.Name]; }
    [[nodiscard]] QStringList* LastBlockOf(const TPDFWatchedFolder& folder);

    TRunHost FHost;
    std::function<bool()> FTerminated;
    QHash<string, TFolderMemory> FMemory; // by the folder's name
    TWorkMarks FMarks;
    std::unique_ptr<TWorkPlace> FPlace;
};
