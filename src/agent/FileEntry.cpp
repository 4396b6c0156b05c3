#include "agent/FileEntry.h"

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
    if (!FClaim->Left || FClaim->Left->Result.isEmpty())
        return TFound::Free;
    if (IsPublished(*FClaim->Left)) {
        FLeft = FClaim->Left;
        return TFound::Published;
    }
    Discard(*FClaim->Left);
    return TFound::Free;
}

/// The file of the result is there, whoever may have renamed it to that name.
bool TFileEntry::IsPublished(const TPublishing& publishing) const {
    struct stat info {};
    return FOutput->Look(publishing.Result, info) && quint64(info.st_ino) == publishing.Inode &&
           info.st_size == publishing.Size;
}

/// A part file that still lies there shows that nothing was published. Where neither is there, somebody may
/// have taken the result away already, so its numbers are never shown again.
void TFileEntry::Discard(const TPublishing& publishing) {
    struct stat info {};
    const bool partLies = FOutput->Look(publishing.Part, info) && quint64(info.st_ino) == publishing.Inode;
    if (partLies) {
        (void)::unlinkat(FOutput->Descriptor(), publishing.Part.constData(), 0);
    } else if (!publishing.Numbers.isEmpty()) {
        FWork->SetSha256(Sha256Of(FSource));
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
    return FLedger.Claims().BeginPublishing(*FWork, *FClaim,
                                            {PathBytes(ExtractFileName(result.FinalPath())),
                                             result.PartName(), info.st_size, quint64(info.st_ino), pages,
                                             numbers});
}

bool TFileEntry::BeginFailing() {
    return FLedger.Claims().BeginPublishing(*FWork, *FClaim, {});
}

void TFileEntry::Finish(const QByteArray& result, const QList<TNumberRun>& numbers) {
    FLedger.Numbers().Finish(*FWork, result, numbers);
}

/// Where nothing is reserved any more, they were given by the go that died.
void TFileEntry::FinishLeft() {
    if (FLeft->Numbers.isEmpty())
        return;
    FWork->SetSha256(Sha256Of(FSource));
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

void TFileEntry::GiveBack() noexcept {
    try {
        if (IsClaimed())
            (void)FLedger.Claims().End(*FWork, *FClaim);
    } catch (const std::exception& e) {
        JournalLine(MessageOf(e)); // it ends with this agent, or with the next go
    }
    FClaim.reset();
}
