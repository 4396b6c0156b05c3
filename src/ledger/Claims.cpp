#include "ledger/Claims.h"

#include "ledger/LedgerConnection.h"
#include "ledger/StoredText.h"

namespace {

/// Of the columns result, part, result_size, result_inode, result_pages, numbers.
TPublishing PublishingOf(const QVariantList& row) {
    return {BytesOfStored(row[0].toString()),
            BytesOfStored(row[1].toString()),
            row[2].toLongLong(),
            quint64(row[3].toLongLong()),
            row[4].toLongLong(),
            NumbersOfStored(row[5].toString())};
}

} // namespace

TClaim TClaims::Take(const TLedgerWork& work, const TClaimedFile& file) {
    TClaim claim;
    // What a power failure of the server takes of a claim, BeginPublishing notices.
    FLedger.Write(TDurable::Soon, [&] {
        FRun.Renew(FLedger);
        claim = {Insert(work, file), FRun.Agent(), std::nullopt};
        if (claim.Id != 0)
            return;
        // The one that was in the way may have ended since.
        if (const auto taken = TakeOver(work, file))
            claim = *taken;
        else
            claim.Id = Insert(work, file);
    });
    return claim;
}

/// 0 where there is one already.
qint64 TClaims::Insert(const TLedgerWork& work, const TClaimedFile& file) {
    return FLedger
        .Rows("INSERT INTO claims (folder, name, size, modified, inode, token, work, agent, state, result, "
              "part,"
              " result_size, result_inode, result_pages, numbers, claimed)"
              " VALUES (?, ?, ?, ?, ?, ?, ?, ?, 'working', '', '', 0, 0, 0, '[]', "
              "{now})"
              " ON CONFLICT (folder, name, size, modified) DO NOTHING RETURNING id",
              {StoredText(file.Folder), StoredText(file.Name), file.Size, file.Modified, qint64(file.Inode),
               FRun.Token(), work.Id(), StoredText(FRun.Agent())})
        .value(0)
        .value(0)
        .toLongLong();
}

/// Nothing where there is none any more.
std::optional<TClaim> TClaims::TakeOver(const TLedgerWork& work, const TClaimedFile& file) {
    const QVariantList row =
        FLedger
            .Rows("SELECT id, token, work, agent, state, inode, result, part, result_size, result_inode, "
                  "result_pages,"
                  " numbers FROM claims"
                  " WHERE folder = ? AND name = ? AND size = ? AND modified = ? {lock}",
                  {StoredText(file.Folder), StoredText(file.Name), file.Size, file.Modified})
            .value(0);
    if (row.isEmpty())
        return std::nullopt;
    const string token = row[1].toString();
    const qint64 holder = row[2].toLongLong();
    const bool isOwn = token == FRun.Token() && holder == work.Id(); // of a call whose end was never heard
    if (!isOwn && !FRun.IsFree(FLedger, token, holder))
        return TClaim{0, TextOfStored(row[3].toString()), std::nullopt};
    TClaim claim{row[0].toLongLong(), FRun.Agent(), std::nullopt};
    const bool isSameFile = quint64(row[5].toLongLong()) == file.Inode;
    if (isSameFile && row[4].toString() == QLatin1String("publishing"))
        claim.Left = PublishingOf(row.mid(6));
    FLedger.Change("UPDATE claims SET token = ?, work = ?, agent = ?, inode = ?, state = ?, claimed = {now}"
                   " WHERE id = ?",
                   {FRun.Token(), work.Id(), StoredText(FRun.Agent()), qint64(file.Inode),
                    claim.Left ? QStringLiteral("publishing") : QStringLiteral("working"), claim.Id});
    return claim;
}

bool TClaims::BeginPublishing(const TLedgerWork& work, const TClaim& claim, const TPublishing& publishing) {
    bool isOurs = false;
    FLedger.Write(TDurable::Fully, [&] {
        FRun.Renew(FLedger);
        isOurs =
            FLedger.Change("UPDATE claims SET state = 'publishing', result = ?, part = ?, result_size = ?,"
                           " result_inode = ?, result_pages = ?, numbers = ?"
                           " WHERE id = ? AND token = ? AND work = ?",
                           {StoredText(publishing.Result), StoredText(publishing.Part), publishing.Size,
                            qint64(publishing.Inode), publishing.Pages, StoredNumbers(publishing.Numbers),
                            claim.Id, FRun.Token(), work.Id()}) == 1;
    });
    return isOurs;
}

bool TClaims::End(const TLedgerWork& work, const TClaim& claim) {
    bool isOurs = false;
    FLedger.Write(TDurable::Soon, [&] {
        isOurs = FLedger.Change("DELETE FROM claims WHERE id = ? AND token = ? AND work = ?",
                                {claim.Id, FRun.Token(), work.Id()}) == 1;
    });
    return isOurs;
}

QList<TLeftClaim> TClaims::Left(const string& folder) {
    QList<TLeftClaim> left;
    FLedger.Write(TDurable::Soon, [&] {
        left.clear();
        for (const QVariantList& row :
             FLedger.Rows("SELECT id, token, work, name, size, result, part, result_size, result_inode,"
                          " result_pages, numbers FROM claims WHERE folder = ? AND state = 'publishing'",
                          {StoredText(folder)}))
            if (FRun.IsFree(FLedger, row[1].toString(), row[2].toLongLong()))
                left.append({row[0].toLongLong(), BytesOfStored(row[3].toString()), row[4].toLongLong(),
                             PublishingOf(row.mid(5))});
    });
    return left;
}

bool TClaims::Forget(const TLeftClaim& claim) {
    bool isThere = false;
    FLedger.Write(TDurable::Soon,
                  [&] { isThere = FLedger.Change("DELETE FROM claims WHERE id = ?", {claim.Id}) == 1; });
    return isThere;
}
