#pragma once
// One pass over the watched folders: which are due, which can be served, and what the log says of the others.
// What happens in a folder is agent/FolderTurn's.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "agent/FolderMemory.h"
#include "agent/RunHost.h"
#include "agent/RunLog.h"
#include "agent/WorkMarks.h"

#include <functional>

class TTurnLog;
enum class TRound;

/// What a pass works with. The lists don't change while it runs.
struct TPassInput {
    const TPDFWatchedFolders& Folders;
    TPDFActionManager& Manager;
    string LogFile;
    qint32 TickCounter;
};

class TFolderPass {
public:
    TFolderPass(const TRunHost& host, std::function<bool()> terminated);

    /// Serves every folder whose turn it is. One that can't be served is noted, and the others go on.
    void Run(const TPassInput& input);

private:
    struct TPass;

    void Sweep(const TPDFWatchedFolder& folder);
    void RunFolder(TPass& pass, const TPDFWatchedFolder& folder);
    void ServeFolder(TPass& pass, const TPDFWatchedFolder& folder, TRound round);
    void NoteTrouble(const TPDFWatchedFolder& folder, const string& trouble);
    [[nodiscard]] TFolderMemory& MemoryOf(const TPDFWatchedFolder& folder) { return FMemory[folder.Name]; }
    [[nodiscard]] QStringList* LastBlockOf(const TPDFWatchedFolder& folder);
    [[nodiscard]] string CurrentTime() { return LogTime(FHost.Clock.Now()); }

    TRunHost FHost;
    std::function<bool()> FTerminated;
    QHash<string, TFolderMemory> FMemory; // by the folder's name
    TWorkMarks FMarks;
};
