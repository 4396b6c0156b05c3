#pragma once
// Each test has an empty ledger of its own, of each kind there is.
#include "ledger/History.h"
#include "ledger/LedgerConnection.h"
#include "ledger/LedgerRun.h"
#include "ledger/Series.h"
#include "ledger/StoredText.h"
#include "testing/Application.h"
#include "testing/Raised.h"
#include "testing/Workspace.h"

#include <gmock/gmock.h>
#include <unistd.h>

/// The parameter is the setting of the ledger's place; empty: a file in the test's folder.
class TLedgerTest : public testing::TestWithParam<string> {
protected:
    TLedgerTest() {
        NeedApplication();
        string setting = FSpace.Path("state/ledger.sqlite");
        if (!GetParam().isEmpty()) {
            static int count = 0;
            const string schema = QStringLiteral("test_%1_%2").arg(::getpid()).arg(++count);
            Place = ParseLedgerPlace(GetParam());
            Change("CREATE SCHEMA " + schema.toLatin1());
            setting = GetParam() + QStringLiteral("&options=-csearch_path%3D") + schema;
        }
        Place = ParseLedgerPlace(setting);
    }

    /// Looks into the tables.
    [[nodiscard]] qint64 Number(const char* sql) const {
        qint64 number = 0;
        TLedgerConnection look(Place);
        look.Read([&] { number = look.Rows(sql).value(0).value(0).toLongLong(); });
        return number;
    }
    void Change(const QByteArray& sql) const {
        TLedgerConnection other(Place);
        other.Write(TDurable::Soon, [&] { other.Change(sql.constData()); });
    }

    TWorkspace FSpace;
    TLedgerPlace Place;
};

/// The variable is set where a server is there for the tests (on_postgresql.sh).
inline QStringList TestServers() {
    return qEnvironmentVariable("MORVANE_TEST_LEDGER").split(u'|', Qt::SkipEmptyParts);
}
#define ON_EACH_LEDGER(SUITE)                                                                                \
    INSTANTIATE_TEST_SUITE_P(SQLite, SUITE, testing::Values(string()));                                      \
    INSTANTIATE_TEST_SUITE_P(PostgreSQL, SUITE, testing::ValuesIn(TestServers()))

/// What databases, statements or pages could trip over.
inline const QList<QByteArray> HostileNames{
    "it's \"quoted\"; DROP TABLE files; --.pdf",
    QByteArray("nul\0inside.pdf", 14),
    "latin-1 \xE4\xF6, cut short \xE2\x90",
    "\xEF\xBB\xBF a mark, an escape \xE2\x90\x9B 00, a replaced \xEF\xBF\xBD, plane 1 \xF0\x9F\x93\x84.pdf",
    "back\\slash %s ? :1 $1 {now} %1\n\t\x1B[31m.pdf",
    QByteArray(255, 'x'),
    QByteArray(255, '\xFF'),
};

inline TNumberSource SourceOf(const QByteArray& name, const QByteArray& contents = "contents") {
    return {QStringLiteral("/in"), name, contents.leftJustified(32, '.')};
}
