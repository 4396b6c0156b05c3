#include "agent/FileEntry.h"

#include "agent/FolderMark.h"
#include "agent/OutcomeRecord.h"
#include "base/Journal.h"
#include "base/Paths.h"

#include <QCryptographicHash>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Raises EReadError.
QByteArray Sha256Of(const TSourceFile& source) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QByteArray block(1 << 18, Qt::Uninitialized);
    for (off_t at = 0;;) {
        const ssize_t got = ::pread(source.Descriptor(), block.data(), size_t(block.size()), at);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw EReadError(source.Path(), errno);
        if (got == 0)
            return hash.result();
        hash.addData(QByteArrayView(block.constData(), got));
        at += got;
    }
}

} // namespace

string LedgerKeyOf(const TAgentLedger& ledger, const string& path, const TFolderPtr& folder) {
    return ledger.IsShared() ? FolderKeyOf(folder) : RecordedFolder(path);
}

bool IsPublished(const TFolder& output, const TPublishing& publishing) {
    struct stat info {};
    return output.Look(publishing.Result, info) && quint64(info.st_ino) == publishing.Inode &&
           info.st_size == publishing.Size;
}

TFileEntry::TFileEntry(TAgentLedger& ledger, const string& folder, const TSourceFile& source,
                       TFolderPtr output)
    : FLedger(ledger), FFolder(folder), FSource(source), FOutput(std::move(output)) {}

TFileEntry::TFound TFileEntry::Claim() {
    const QByteArray name = PathBytes(FSource.Name());
    const TFileState& state = FSource.Opened();
    if (FWork == nullptr)
        FWork = std::make_unique<TLedgerWork>(FLedger.Run(), TNumberSource{FFolder, name});
    FClaim = FLedger.Claims().Take(*FWork, {FFolder, name, state.Size, state.ModifyTime, state.Inode});
    if (FClaim->Id == 0)
        return TFound::Elsewhere;
    if (!FClaim->Left)
        return TFound::Free;
    const TPublishing left = *FClaim->Left;
    if (!left.Result.isEmpty() && IsPublished(*FOutput, left)) {
        FLeft = left;
        if (!FClaim->LeftByOther)
            return TFound::Published;
        FinishLeft();
        FLeft.reset();
    } else {
        Discard(left);
    }
    FLedger.Claims().Restart(*FWork, *FClaim);
    return TFound::Free;
}

/// A part file that still lies there shows that nothing was published. Where neither is there, somebody may
/// have taken the result away already, so its numbers are never shown again.
void TFileEntry::Discard(const TPublishing& publishing) {
    struct stat info {};
    const bool partLies = FOutput->Look(publishing.Part, info) && quint64(info.st_ino) == publishing.Inode;
    if (partLies)
        (void)::unlinkat(FOutput->Descriptor(), publishing.Part.constData(), 0);
    if (publishing.Numbers.isEmpty())
        return;
    if (partLies) {
        FLedger.Numbers().Reopen(*FWork);
    } else {
        FLedger.Numbers().Resume(*FWork);
        FLedger.Numbers().Void(*FWork);
    }
}

qint64 TFileEntry::TakeNumbers(const string& series, qint64 count) {
    try {
        if (!IsClaimed())
            switch (Claim()) {
            case TFound::Free:
                break;
            case TFound::Elsewhere:
                throw ENumbersAway(QStringLiteral("\"%1\" is worked on by %2").arg(FSource.Path(), Holder()));
            case TFound::Published:
                throw ENumbersAway(
                    QStringLiteral("The result of \"%1\" was published already").arg(FSource.Path()));
            }
        if (FWork->Source().Sha256.isEmpty())
            FWork->SetSha256(Sha256Of(FSource));
        return FLedger.Numbers().Reserve(*FWork, series, count).First;
    } catch (const ELedger& e) {
        if (e.Fault() == TLedgerFault::Refused)
            throw Exception(e.Message());
        throw ENumbersAway(e.Message());
    } catch (const EFileError& e) {
        throw ENumbersAway(e.Message());
    }
}

bool TFileEntry::BeginPublishing(const TPartFile& result, qint64 pages, const QList<TNumberRun>& numbers) {
    struct stat info {};
    if (::fstat(result.Descriptor(), &info) != 0)
        throw EReadError(result.FinalPath(), errno);
    FBegun = TPublishing{PathBytes(ExtractFileName(result.FinalPath())),
                         result.PartName(),
                         info.st_size,
                         quint64(info.st_ino),
                         pages,
                         numbers};
    return FLedger.Claims().BeginPublishing(*FWork, *FClaim, *FBegun);
}

bool TFileEntry::BeginFailing() {
    return FLedger.Claims().BeginPublishing(*FWork, *FClaim, {});
}

void TFileEntry::Finish(const QByteArray& result, const QList<TNumberRun>& numbers) {
    FLedger.Numbers().Finish(*FWork, result, numbers);
}

/// Where none is open any more, they were given by the go that died.
void TFileEntry::FinishLeft() {
    if (FLeft->Numbers.isEmpty())
        return;
    if (!FClaim->LeftByOther)
        FWork->SetSha256(Sha256Of(FSource)); // what else its goes have reserved is void
    FLedger.Numbers().Resume(*FWork);
    if (!FWork->Reservations().isEmpty())
        FLedger.Numbers().Finish(*FWork, FLeft->Result, FLeft->Numbers);
}

void TFileEntry::Void() {
    FLedger.Numbers().Void(*FWork);
}

void TFileEntry::End(TFileRecord record) noexcept {
    FLedger.EndClaim(std::move(record), std::move(FWork), *FClaim);
    FClaim.reset();
}

/// Where the result has got its name all the same, whoever takes the file up next completes it.
void TFileEntry::GiveBack() noexcept {
    try {
        if (IsClaimed() && !(FBegun && IsPublished(*FOutput, *FBegun))) {
            if (FBegun)
                Discard(*FBegun);
            (void)FLedger.Claims().End(*FWork, *FClaim);
        }
    } catch (const std::exception& e) {
        JournalLine(MessageOf(e)); // it ends with this agent, or with the next go
    }
    FClaim.reset();
}
