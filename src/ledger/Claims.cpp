#include "ledger/Claims.h"

#include "ledger/LedgerConnection.h"
#include "ledger/StoredText.h"

#include <algorithm>

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
        if (const auto taken = TakeOver(work, file)) {
            claim = *taken;
            return;
        }
        claim = {Insert(work, file), FRun.Agent()};
        // Another agent was faster; its claim may have ended since.
        if (claim.Id == 0)
            claim = TakeOver(work, file).value_or(TClaim());
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

/// Nothing where there is none. A file is known by its inode as well: what a dead agent had taken may have
/// come back under another name.
std::optional<TClaim> TClaims::TakeOver(const TLedgerWork& work, const TClaimedFile& file) {
    const QList<QVariantList> rows = FLedger.Rows(
        "SELECT id, token, work, agent, state, inode, result, part, result_size, result_inode, result_pages,"
        " numbers, name FROM claims WHERE folder = ? AND size = ? AND modified = ?"
        " AND (name = ? OR (inode = ? AND state = 'publishing')) {lock}",
        {StoredText(file.Folder), file.Size, file.Modified, StoredText(file.Name), qint64(file.Inode)});
    const auto isOfFile = [&](const QVariantList& row) { return quint64(row[5].toLongLong()) == file.Inode; };
    // One of this work is of a call whose end was never heard.
    const auto isFree = [&](const QVariantList& row) {
        const string token = row[1].toString();
        const qint64 holder = row[2].toLongLong();
        return (token == FRun.Token() && holder == work.Id()) || FRun.IsFree(FLedger, token, holder);
    };
    auto found = std::find_if(rows.begin(), rows.end(),
                              [&](const QVariantList& row) { return isOfFile(row) && isFree(row); });
    if (found == rows.end())
        found = std::find_if(rows.begin(), rows.end(), [&](const QVariantList& row) {
            return row[12].toString() == StoredText(file.Name);
        });
    if (found == rows.end())
        return std::nullopt;
    const QVariantList& row = *found;
    const string token = row[1].toString();
    const qint64 holder = row[2].toLongLong();
    if (!isFree(row))
        return TClaim{0, TextOfStored(row[3].toString())};
    TClaim claim{row[0].toLongLong(), FRun.Agent()};
    if (row[4].toString() == QLatin1String("publishing")) {
        claim.Left = PublishingOf(row.mid(6));
        claim.LeftByOther = !isOfFile(row);
        FLedger.Change("UPDATE reservations SET token = ?, work = ?, agent = ?"
                       " WHERE token = ? AND work = ? AND ended = 0 AND state = 'publishing'",
                       {FRun.Token(), work.Id(), StoredText(FRun.Agent()), token, holder});
    }
    FLedger.Change(
        "UPDATE claims SET token = ?, work = ?, agent = ?, inode = ?, claimed = {now} WHERE id = ?",
        {FRun.Token(), work.Id(), StoredText(FRun.Agent()), qint64(file.Inode), claim.Id});
    return claim;
}

void TClaims::Restart(const TLedgerWork& work, const TClaim& claim) {
    FLedger.Write(TDurable::Soon, [&] {
        FLedger.Change("UPDATE claims SET state = 'working', result = '', part = '', result_size = 0,"
                       " result_inode = 0, result_pages = 0, numbers = '[]'"
                       " WHERE id = ? AND token = ? AND work = ?",
                       {claim.Id, FRun.Token(), work.Id()});
    });
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
        if (isOurs && !publishing.Numbers.isEmpty())
            FLedger.Change("UPDATE reservations SET state = 'publishing'"
                           " WHERE token = ? AND work = ? AND ended = 0",
                           {FRun.Token(), work.Id()});
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

QList<TClaimedFile> TClaims::LeftFiles(const string& folder) {
    QList<TClaimedFile> left;
    FLedger.Write(TDurable::Soon, [&] {
        left.clear();
        for (const QVariantList& row :
             FLedger.Rows("SELECT token, work, name, size, modified, inode FROM claims"
                          " WHERE folder = ? AND state = 'publishing'",
                          {StoredText(folder)}))
            if (FRun.IsFree(FLedger, row[0].toString(), row[1].toLongLong()))
                left.append({folder, BytesOfStored(row[2].toString()), row[3].toLongLong(),
                             row[4].toLongLong(), quint64(row[5].toLongLong())});
    });
    return left;
}
