#pragma once
// Which of several agents over the same folders has which file. A claim lasts until it is ended or its agent
// is dead (ledger/LedgerRun.h); clocks of the agents' machines don't matter.
#include "ledger/FileRecord.h"
#include "ledger/LedgerRun.h"

/// A file as all agents see it.
struct TClaimedFile {
    string Folder; ///< an identifier of the folder, since mounts differ
    QByteArray Name;
    qint64 Size = 0;
    qint64 Modified = 0; ///< ns since 1970, as the file system says
    /// Tells a file from another one that came under the same name with the same time.
    quint64 Inode = 0;
};

/// What is about to be published, so that another agent can complete it.
struct TPublishing {
    QByteArray Result; ///< its name in output/; empty: the source is about to go to Error/
    QByteArray Part;   ///< the hidden file there that gets this name
    qint64 Size = 0;   ///< of it, when it is whole
    quint64 Inode = 0; ///< of it, which it keeps under the other name
    qint64 Pages = 0;
    QList<TNumberRun> Numbers;
    bool operator==(const TPublishing&) const = default;
};

struct TClaim {
    qint64 Id = 0; ///< 0: another agent, or another work of this one, has the file
    string Agent;  ///< who has it
    /// Taken over from a dead agent that had begun to publish this, with the numbers that it was to bear: it
    /// is to be completed if it has its name. If it hasn't, Restart, and the file is to be worked on.
    std::optional<TPublishing> Left = {};
    bool LeftByOther = false; ///< of another file that had the same name, size and time
};

class TClaims {
public:
    TClaims(TLedgerConnection& ledger, const TLedgerRun& run) : FLedger(ledger), FRun(run) {}

    /// For the work, while it is live. Raises ELedger, as all here.
    [[nodiscard]] TClaim Take(const TLedgerWork& work, const TClaimedFile& file);
    /// Before the result gets its name. False where another agent has taken the claim over: then nothing may
    /// be published. After true there is the time of a lease to do so.
    /// The numbers that are reserved for the work are given to nobody else from here on, whatever file comes.
    [[nodiscard]] bool BeginPublishing(const TLedgerWork& work, const TClaim& claim,
                                       const TPublishing& publishing);
    /// What was left of it is dealt with.
    void Restart(const TLedgerWork& work, const TClaim& claim);
    /// Files of the folder that dead agents had begun to publish; Take gives what they left.
    [[nodiscard]] QList<TClaimedFile> LeftFiles(const string& folder);
    /// The source is settled, or given back. False, and nothing happens, where another agent has taken the
    /// claim over, or it has ended already.
    bool End(const TLedgerWork& work, const TClaim& claim);

private:
    [[nodiscard]] qint64 Insert(const TLedgerWork& work, const TClaimedFile& file);
    [[nodiscard]] std::optional<TClaim> TakeOver(const TLedgerWork& work, const TClaimedFile& file);

    TLedgerConnection& FLedger;
    const TLedgerRun& FRun;
};
