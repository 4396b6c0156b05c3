#pragma once
// One pass over the watched folders: which are due, which files they hold, and where each file ends up.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "agent/RunHost.h"
#include "agent/RunLog.h"

#include <QSet>

#include <functional>

/// What a pass works with. The lists don't change while it runs.
struct TPassInput {
    const TPDFWatchedFolders& Folders;
    TPDFActionManager& Manager;
    string LogFile;
    qint32 TickCounter;
};

class TFolderPass {
public:
    TFolderPass(TRunHost host, std::function<bool()> terminated);

    /// Serves every folder whose turn it is. What escapes (a subfolder that can't be made, a folder that
    /// can't be listed, a failed file that can't be moved to `Error/` either) ends the pass.
    void Run(const TPassInput& input);

private:
    struct TFolderTurn;
    class TReporter;

    void RunFolder(TFolderTurn& turn);
    void ServeFile(TFolderTurn& turn, const string& name);
    void WorkAndMove(TFolderTurn& turn, const string& name, class TSourceFile& source);
    void MoveToError(TFolderTurn& turn, const string& name, class TSourceFile& source);
    void SweepOnce(const TFolderTurn& turn);
    [[nodiscard]] string CurrentTime() { return LogTime(FHost.Clock.Now()); }

    TRunHost FHost;
    std::function<bool()> FTerminated;
    QSet<string> FSwept; // folders freed of the leftovers of dead runs
};
