#include "ledger/Records.h"

#include "LedgerFixture.h"

namespace {

using testing::ElementsAre;

constexpr auto Done = TRecordState::Done;
constexpr auto Failed = TRecordState::Failed;
constexpr auto Waiting = TRecordState::Waiting;

TFileRecord Record(const string& folder, const QByteArray& name, TRecordState state, qint64 ended = 1000) {
    return {folder, name, "List", state, {}, {}, {}, 2, 100, ended - 10, ended, "me", {}};
}

class Records : public TLedgerTest {
protected:
    void Write(const QList<TFileRecord>& records) {
        FRecords.Write(QStringLiteral("test"), FNext, records);
        FNext += records.size();
    }
    static QByteArrayList NamesOf(const QList<THistoryRow>& rows) {
        QByteArrayList names;
        for (const THistoryRow& row : rows)
            names.append(row.Record.Name);
        return names;
    }

    TLedgerConnection FLedger{Place};
    TRecords FRecords{FLedger};
    THistory FHistory{FLedger};
    qint64 FNext = 1;
};
ON_EACH_LEDGER(Records);

TEST_P(Records, ComeBackAsTheyWereWhateverIsInTheirNames) {
    for (const QByteArray& name : HostileNames) {
        const string text = TextOfStored(StoredText(name));
        const TFileRecord record{text,
                                 name,
                                 text,
                                 TRecordState::DoneWithWarnings,
                                 {{name, 1LL << 40}, {"b", 0}},
                                 {{"damage.repaired", text, text}},
                                 {{text, 7, 3, 1}},
                                 5,
                                 6,
                                 7,
                                 8,
                                 text,
                                 name};
        Write({record});
        THistoryFilter filter;
        filter.Folder = text;
        filter.Limit = 1;
        EXPECT_TRUE(FHistory.Find(filter).value(0).Record == record) << name.toPercentEncoding().constData();
    }
    EXPECT_EQ(FHistory.Find({}).size(), HostileNames.size());
}

TEST_P(Records, AreFoundByFilterAndPageAndIfTheyFailedLast) {
    const QByteArray umlaut = "\xC3\x84.pdf";
    Write({Record("/a", "One.pdf", Done, 1000), Record("/a", "two_.pdf", Failed, 2000),
           Record("/b", "TWO%.pdf", Waiting, 3000), Record("/b", umlaut, Done, 4000)});
    const auto found = [this](const THistoryFilter& filter) { return NamesOf(FHistory.Find(filter)); };
    EXPECT_THAT(found({.Folder = "/a"}), ElementsAre("two_.pdf", "One.pdf"));
    EXPECT_THAT(found({.States = {Done, Waiting}}), ElementsAre(umlaut, "TWO%.pdf", "One.pdf"));
    EXPECT_THAT(found({.From = 2000, .Until = 4000}), ElementsAre("TWO%.pdf", "two_.pdf"));
    EXPECT_THAT(found({.Name = "tWo*"}), ElementsAre("TWO%.pdf", "two_.pdf"));
    EXPECT_THAT(found({.Name = "*_.*"}), ElementsAre("two_.pdf"));
    EXPECT_THAT(found({.Name = "???%.pdf"}), ElementsAre("TWO%.pdf"));
    EXPECT_THAT(found({.Name = QString::fromUtf8("\xC3\xA4.pdf")}), ElementsAre());
    const qint64 seen = FHistory.Find({.Limit = 3}).last().Key;
    Write({Record("/a", "newer.pdf", Done)}); // moves nothing of what comes next
    EXPECT_THAT(found({.Before = seen}), ElementsAre("One.pdf"));

    Write({Record("/a", "again", Failed), Record("/b", "again", Failed), Record("/a", "again", Done)});
    EXPECT_THAT(NamesOf(FHistory.Failed({})), ElementsAre("again", "two_.pdf"));
    EXPECT_THAT(NamesOf(FHistory.Failed({.Folder = "/a"})), ElementsAre("two_.pdf"));
}

TEST_P(Records, AreThereOnceAndTotalsOutliveThem) {
    Write({Record("/a", "1", Done, 1000), Record("/a", "2", Failed, 2000)});
    Write({Record("/a", "3", Done, 3000)});
    EXPECT_EQ(FRecords.Prune(3000, 1), 1);
    EXPECT_EQ(FRecords.Prune(3000, 10), 1);
    EXPECT_THAT(NamesOf(FHistory.Find({})), ElementsAre("3"));
    FRecords.Write("test", FNext - 1,
                   {Record("/a", "3", Done), Record("/a", "4", Done)}); // the first is there
    EXPECT_THAT(NamesOf(FHistory.Find({})), ElementsAre("4", "3"));
    const THistoryTotal total = FHistory.Totals().value(0);
    EXPECT_EQ(total.State, Done);
    EXPECT_THAT((QList<qint64>{total.Files, total.Pages, total.Bytes, total.Milliseconds}),
                ElementsAre(3, 6, 300, 30));
}

TEST_P(Records, AServerThatClosedIsAskedAgainAndANewerLedgerLeftAlone) {
    Write({Record("/a", "before", Done)});
    if (Place.Kind == TLedgerPlace::TKind::PostgreSQL)
        (void)Number("SELECT COUNT(pg_terminate_backend(pid)) FROM pg_stat_activity"
                     " WHERE application_name = 'morvane' AND pid <> pg_backend_pid()");
    else
        EXPECT_TRUE(QFile::remove(Place.Path)); // somebody has moved the file away: the next one begins
    Write({Record("/a", "after", Done)});
    EXPECT_EQ(FHistory.Find({}).value(0).Record.Name, "after");

    Change("INSERT INTO versions (version, applied) VALUES (99, 0)");
    const string message = RaisedBy([&] { (void)Number("SELECT 1"); });
    EXPECT_TRUE(message.contains("newer version") && message.contains("99")) << message.toStdString();
}

} // namespace
