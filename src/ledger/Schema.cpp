#include "ledger/Schema.h"

#include "ledger/LedgerConnection.h"

#include <vector>

namespace {

/// What leads from each version to the next. A version that was released is never changed: there is a further
/// one instead. All times are milliseconds since 1970, UTC.
const std::vector<std::vector<const char*>>& Migrations() {
    static const std::vector<std::vector<const char*>> migrations{{
        "CREATE TABLE files (id {identity}, folder TEXT NOT NULL, name TEXT NOT NULL, list TEXT NOT NULL,"
        " state TEXT NOT NULL, results TEXT NOT NULL, reasons TEXT NOT NULL, numbers TEXT NOT NULL,"
        " pages BIGINT NOT NULL, size BIGINT NOT NULL, began BIGINT NOT NULL, ended BIGINT NOT NULL,"
        " agent TEXT NOT NULL, settled TEXT NOT NULL)",
        "CREATE INDEX files_by_name ON files (folder, name, id)",
        "CREATE INDEX files_by_time ON files (ended)",
        "CREATE INDEX files_failed ON files (id) WHERE state = 'Failed'",
        "CREATE TABLE totals (agent TEXT NOT NULL, folder TEXT NOT NULL, state TEXT NOT NULL,"
        " files BIGINT NOT NULL, pages BIGINT NOT NULL, bytes BIGINT NOT NULL, milliseconds BIGINT NOT NULL,"
        " PRIMARY KEY (agent, folder, state))",
        "CREATE TABLE writers (writer TEXT PRIMARY KEY, recorded BIGINT NOT NULL, written BIGINT NOT NULL)",

        "CREATE TABLE agents (token TEXT PRIMARY KEY, agent TEXT NOT NULL, began BIGINT NOT NULL,"
        " lease BIGINT NOT NULL)",
        "CREATE TABLE claims (id {identity}, folder TEXT NOT NULL, name TEXT NOT NULL, size BIGINT NOT NULL,"
        " modified BIGINT NOT NULL, inode BIGINT NOT NULL, token TEXT NOT NULL, work BIGINT NOT NULL,"
        " agent TEXT NOT NULL, state TEXT NOT NULL, result TEXT NOT NULL, part TEXT NOT NULL,"
        " result_size BIGINT NOT NULL, result_inode BIGINT NOT NULL, result_pages BIGINT NOT NULL,"
        " numbers TEXT NOT NULL, claimed BIGINT NOT NULL,"
        " UNIQUE (folder, name, size, modified))",

        "CREATE TABLE counters (series TEXT PRIMARY KEY, next BIGINT NOT NULL)",
        "CREATE TABLE reservations (id {identity}, series TEXT NOT NULL, first BIGINT NOT NULL,"
        " count BIGINT NOT NULL CHECK (count > 0), folder TEXT NOT NULL, name TEXT NOT NULL,"
        " hash TEXT NOT NULL, token TEXT NOT NULL, work BIGINT NOT NULL, agent TEXT NOT NULL,"
        " state TEXT NOT NULL, result TEXT NOT NULL, reserved BIGINT NOT NULL, ended BIGINT NOT NULL,"
        " UNIQUE (series, first))",
        "CREATE INDEX reservations_open ON reservations (hash, folder) WHERE state = 'reserved'",
        "CREATE INDEX reservations_by_work ON reservations (token, work) WHERE ended = 0",
        "CREATE TABLE numbers (series TEXT NOT NULL, first BIGINT NOT NULL,"
        " count BIGINT NOT NULL CHECK (count > 0), page BIGINT NOT NULL, reservation BIGINT NOT NULL,"
        " PRIMARY KEY (series, first))",
        "CREATE INDEX numbers_by_reservation ON numbers (reservation)",
    }};
    return migrations;
}

qint64 VersionOf(TLedgerConnection& ledger) {
    if (ledger.Rows("{has versions}").isEmpty())
        return 0;
    return ledger.Rows("SELECT COALESCE(MAX(version), 0) FROM versions").value(0).value(0).toLongLong();
}

} // namespace

void PrepareSchema(TLedgerConnection& ledger) {
    const auto newest = qint64(Migrations().size());
    const qint64 found = VersionOf(ledger);
    if (found > newest)
        throw ELedger(TLedgerFault::Unusable,
                      QStringLiteral("The ledger \"%1\" was changed by a newer version of the program: its "
                                     "tables have version %2, and this program knows %3.")
                          .arg(ledger.Place().Name())
                          .arg(found)
                          .arg(newest));
    if (found == newest)
        return;
    ledger.Write(TDurable::Fully, [&] {
        (void)ledger.Rows("{lock schema}"); // two agents may find it old at once
        ledger.Change(
            "CREATE TABLE IF NOT EXISTS versions (version BIGINT PRIMARY KEY, applied BIGINT NOT NULL)");
        for (qint64 version = VersionOf(ledger); version < newest; ++version) {
            for (const char* statement : Migrations()[size_t(version)])
                ledger.Change(statement);
            ledger.Change("INSERT INTO versions (version, applied) VALUES (?, {now})", {version + 1});
        }
    });
}
