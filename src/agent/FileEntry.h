#pragma once
// One go at one file, in the ledger: the claim by which no other agent works on it, and the numbers that it
// is given. Where agents share the ledger every file is claimed; else those that take numbers are, so that
// what a crash leaves between publishing and settling is neither lost nor numbered twice.
#include "agent/AgentLedger.h"
#include "base/PartFile.h"
#include "base/SourceFile.h"

#include <optional>

/// How all agents of the ledger know a watched folder. Raises EFileError.
[[nodiscard]] string LedgerKeyOf(const TAgentLedger& ledger, const string& path, const TFolderPtr& folder);

/// The file of the result is there, whoever may have renamed it to that name.
[[nodiscard]] bool IsPublished(const TFolder& output, const TPublishing& publishing);

class TFileEntry {
public:
    /// Asks the ledger nothing. `folder` is how all agents know the watched folder; `source` outlives the
    /// entry.
    TFileEntry(TAgentLedger& ledger, const string& folder, const TSourceFile& source, TFolderPtr output);

    enum class TFound {
        Free,      ///< it is this agent's now
        Elsewhere, ///< another agent has it
        Published, ///< a go that died had published its result: Left() says what is still to be done
    };
    /// Raises ELedger, as all below.
    [[nodiscard]] TFound Claim();
    [[nodiscard]] bool IsClaimed() const { return FClaim && FClaim->Id != 0; }
    [[nodiscard]] const std::optional<TPublishing>& Left() const { return FLeft; }
    /// Who has it, where it is elsewhere.
    [[nodiscard]] string Holder() const { return FClaim ? FClaim->Agent : string(); }

    /// As TWorkHost::TakeNumbers: claims the file, where it isn't yet.
    [[nodiscard]] qint64 TakeNumbers(const string& series, qint64 count);

    /// False where another agent has taken the file over: nothing may be published then.
    [[nodiscard]] bool BeginPublishing(const TPartFile& result, qint64 pages,
                                       const QList<TNumberRun>& numbers);
    /// The source is about to go to Error/. Likewise.
    [[nodiscard]] bool BeginFailing();
    /// The result has its name, and bears these numbers.
    void Finish(const QByteArray& result, const QList<TNumberRun>& numbers);
    /// What an earlier go had published is given its numbers.
    void FinishLeft();
    /// The file failed: its numbers are given to nobody.
    void Void();
    /// The file has gone its way, and this is the record of it. Raises nothing.
    void End(TFileRecord record) noexcept;
    /// Others may have the file. Raises nothing.
    void GiveBack() noexcept;

private:
    void Discard(const TPublishing& publishing);

    TAgentLedger& FLedger;
    const string FFolder;
    const TSourceFile& FSource;
    const TFolderPtr FOutput;
    std::unique_ptr<TLedgerWork> FWork;
    std::optional<TClaim> FClaim;
    std::optional<TPublishing> FLeft;
    std::optional<TPublishing> FBegun; // to be published by this go
};
