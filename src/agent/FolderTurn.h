#pragma once
// One turn of one watched folder: its files are listed, each is taken up, worked on, claimed, published and
// settled (docs/architecture.md tells the order and why).
//
// Everything goes by descriptors of the folder and its three subfolders, opened for the turn, so that no link
// or folder put in their place leads it elsewhere.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "agent/FolderMemory.h"
#include "agent/RunHost.h"
#include "agent/TurnLog.h"
#include "base/ClaimFolder.h"
#include "work/FileWork.h"

#include <functional>

class ESurroundings;
class TWorkMarks;

struct TTurnInput {
    const TPDFWatchedFolder& Folder;
    TPDFActionManager& Manager;
    TTurnLog& Log;
    TFolderMemory& Memory;
    TWorkMarks& Marks;
    TRunHost Host;
    const std::function<bool()>& Terminated;
};

/// Files over which a run died come after all others, so they have a round of their own.
enum class TRound { Others, Suspects };

class TFolderTurn {
public:
    /// Opens the folder and makes its subfolders. Raises where it can't be served.
    explicit TFolderTurn(const TTurnInput& input);
    ~TFolderTurn();
    TFolderTurn(const TFolderTurn&) = delete;
    TFolderTurn& operator=(const TFolderTurn&) = delete;

    /// Lists the folder and serves its files. Raises where it can't be listed.
    void Serve(TRound round);
    /// There was anything to serve.
    [[nodiscard]] bool Listed() const { return FListed; }
    /// Files were left for the other round.
    [[nodiscard]] bool LeftSuspects() const { return FLeftSuspects; }

private:
    class TReporter;
    /// A file whose result has its name, and that is still to leave the claim folder.
    struct TPublished {
        std::unique_ptr<TSourceFile> Source;
        bool Warned;
    };

    void TellStatus() const;
    [[nodiscard]] QStringList List(TRound round);
    [[nodiscard]] bool IsDue(const string& name);
    void ServeFile(const string& name);
    [[nodiscard]] std::unique_ptr<TSourceFile> Open(const string& name);
    void WorkOn(std::unique_ptr<TSourceFile> source);
    [[nodiscard]] TFileWork WorkFor(const TSourceFile& source) const;
    [[nodiscard]] TWorked Work(const TSourceFile& source);
    void TakeAway(std::unique_ptr<TSourceFile> source, TWorked worked);
    [[nodiscard]] bool Claim(TSourceFile& source);
    void Publish(TWorked& worked);
    void SettleGroup();
    void SettlePublished(TPublished& file);
    void Fail(std::unique_ptr<TSourceFile> source, const string& reason);

    enum class TRetry { AfterPause, WhenChanged };
    void Wait(const string& name, const EFileError& trouble, TRetry retry = TRetry::AfterPause,
              bool published = false);
    void LogFailure(const string& reason);
    [[nodiscard]] qint64 Now() const { return FInput.Host.Clock.Steady(); }
    [[nodiscard]] qint64 TimeOfDay() const;
    /// What decides who may rename a file from here to there.
    [[nodiscard]] quint64 Rights() const { return FHome->Rights() * 31 + FProcess->Rights(); }

    TTurnInput FInput;
    TQuietTime FQuiet;
    TFolderPtr FHome;
    TFolderPtr FOutput;
    TFolderPtr FProcess;
    TFolderPtr FError;
    TClaimFolder FClaims;           // in process/
    TClaimFolder FNearby;           // in the folder itself, where process/ lies on another file system
    std::vector<TPublished> FGroup; // published, and settled together
    int FTroubles = 0;              // in a row
    bool FListed = false;
    bool FLeftSuspects = false;
};

/// Gives back what dead runs claimed in the folder, and removes their temporaries; makes nothing. Returns the
/// names that were given back. Raises EFileError.
QStringList SweepFolder(const string& path);
