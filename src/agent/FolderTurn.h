#pragma once
// One turn of one watched folder: its files are listed, each is taken up, worked on somewhere
// (agent/WorkPlace.h), claimed, published and settled (docs/architecture.md tells the order and why).
//
// Everything goes by descriptors of the folder and its three subfolders, opened for the turn, so that no link
// or folder put in their place leads it elsewhere.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "agent/FolderMemory.h"
#include "agent/Job.h"
#include "agent/RunHost.h"
#include "base/ClaimFolder.h"
#include "ledger/FileRecord.h"

#include <functional>

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

    /// Lists the folder. Raises where it can't be listed.
    void List(TRound round);
    /// There was anything to serve.
    [[nodiscard]] bool Listed() const { return FListed; }
    /// Files were left for the other round.
    [[nodiscard]] bool LeftSuspects() const { return FLeftSuspects; }

    /// Null where no list has the name that the folder gives.
    [[nodiscard]] TPDFActionList* ListOfActions() const { return FActions; }
    /// The next file that can be taken up; null where there is none. One with an outcome needs no work.
    [[nodiscard]] std::unique_ptr<TJob> Next();
    /// Where the file's outcome leads it: taken, published, soon settled; or to Error/; or it waits.
    void Finish(TJob& job);
    /// What was published leaves the folder, unless it was published just now and may wait for more.
    void SettleOldGroup();
    /// All files are finished.
    void End();

private:
    /// A file whose result has its name, and that is still to leave the claim folder.
    struct TPublished {
        std::unique_ptr<TSourceFile> Source;
        std::unique_ptr<TFileEntry> Entry; // goes before the source
        TFileRecord Record;
    };

    void TellStatus() const;
    [[nodiscard]] bool IsDue(const string& name);
    [[nodiscard]] std::unique_ptr<TJob> TakeUp(const string& name);
    [[nodiscard]] std::unique_ptr<TSourceFile> Open(const string& name);
    void Plan(TJob& job) const;
    void MeetTrouble(TJob& job);
    void TakeAway(TJob& job);
    [[nodiscard]] bool Claim(TSourceFile& source);
    [[nodiscard]] bool Enter(TJob& job);
    [[nodiscard]] bool BeginFailing(TJob& job);
    void Publish(TJob& job);
    void PublishClaimed(TJob& job);
    static void FinishNumbers(TPublished& file);
    void SettleGroup();
    void SettlePublished(TPublished& file);
    void Fail(TJob& job, const TReason& reason);

    enum class TRetry { AfterPause, WhenChanged };
    /// Why and for how long a file stays.
    struct TWait {
        TRetry Retry = TRetry::AfterPause;
        bool OfSource = false;  ///< it can't be read
        bool Published = false; ///< its result lies in place
        bool Claimed = false;   ///< the ledger knows of that
    };
    void KeepPublished(TPublished& file, const EFileError& trouble, TRetry retry);
    void Wait(TJob& job, const EFileError& trouble, TWait wait);
    void Wait(TJob& job, const EFileError& trouble) { Wait(job, trouble, TWait()); }
    /// True where that is news.
    bool NoteWaiting(const string& name, const EFileError& trouble, const TWait& wait);
    void RecordWaiting(const string& name, qint64 size, const TReason& reason) const;
    [[nodiscard]] TFileRecord RecordOfEnd(const TJob& job) const;
    void Record(TFileRecord record) const;
    /// With the end of its claim, where it has one.
    void RecordSettled(TFileEntry* entry, TFileRecord record) const;
    static string FailureLine(const string& reason);
    [[nodiscard]] qint64 Now() const { return FInput.Host.Clock.Steady(); }
    [[nodiscard]] qint64 TimeOfDay() const;
    /// What decides who may rename a file from here to there.
    [[nodiscard]] quint64 Rights() const { return FHome->Rights() * 31 + FProcess->Rights(); }

    TTurnInput FInput;
    TQuietTime FQuiet;
    TPDFActionList* FActions = nullptr;
    string FKey; // how the ledger knows the folder
    TFolderPtr FHome;
    TFolderPtr FOutput;
    TFolderPtr FProcess;
    TFolderPtr FError;
    TClaimFolder FClaims;           // in process/
    TClaimFolder FNearby;           // in the folder itself, where process/ lies on another file system
    QStringList FNames;             // listed
    qsizetype FNext = 0;            // of them
    std::vector<TPublished> FGroup; // published, and settled together
    qint64 FGroupBegun = 0;         // by the steady clock
    int FTroubles = 0;              // in a row
    bool FRests = false;            // after too many troubles
    bool FListed = false;
    bool FLeftSuspects = false;
};
