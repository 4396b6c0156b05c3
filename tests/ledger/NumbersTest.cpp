#include "ledger/Numbers.h"

#include "LedgerFixture.h"
#include "testing/DeadToken.h"

#include <limits>

namespace {

using testing::ElementsAre;

constexpr qint64 Most = std::numeric_limits<qint64>::max();

class Numbers : public TLedgerTest {
protected:
    [[nodiscard]] qint64 First(TLedgerWork& work, const string& series, qint64 count) {
        return FNumbers.Reserve(work, series, count).First;
    }
    /// As "1 given a.pdf 2", with the page where there is one.
    QStringList Audit(const string& series) {
        QStringList rows;
        FSeries.Audit(series, [&](const TAuditRow& row) {
            constexpr const char* states[] = {"reserved", "given", "void"};
            rows.append(QString("%1 %2 %3").arg(row.Number).arg(states[int(row.State)], row.File) +
                        (row.Page > 0 ? u' ' + QString::number(row.Page) : QString()));
        });
        return rows;
    }

    TLedgerConnection FLedger{Place};
    TLedgerRun FRun{Place, QStringLiteral("me")};
    TNumbers FNumbers{FLedger, FRun};
    TSeries FSeries{FLedger};
};
ON_EACH_LEDGER(Numbers);

TEST_P(Numbers, FollowEachOtherAndEndAsGivenOrVoid) {
    TLedgerWork work(FRun, SourceOf("a"));
    EXPECT_EQ(First(work, "S", 4), 1);
    EXPECT_EQ(First(work, "T", 1), 1);
    EXPECT_EQ(First(work, "S", 2), 5); // in one work, equal calls get numbers of their own
    EXPECT_EQ(First(work, "S", 2), 7);
    TLedgerWork other(FRun, SourceOf("b", "other"));
    EXPECT_EQ(First(other, "S", 1), 9);
    for (const QList<TNumberRun>& others : QList<QList<TNumberRun>>{{{"S", 9, 1, 1}},
                                                                    {{"S", 8, 2, 1}},
                                                                    {{"T", 2, 1, 1}},
                                                                    {{"S", 1, 0, 1}},
                                                                    {{"S", 3, Most, 1}},
                                                                    {{"S", 1, 2, 1}, {"S", 2, 1, 7}}})
        EXPECT_NE(RaisedBy([&] { FNumbers.Finish(work, "a", others); }), "") << "nothing is given by it";
    FNumbers.Finish(work, "a (1)", {{"S", 1, 2, 3}, {"S", 4, 1, 9}, {"S", 5, 2, 0}});
    EXPECT_THAT(Audit("S"), ElementsAre("1 given a 3", "2 given a 4", "3 void a", "4 given a 9", "5 given a",
                                        "6 given a", "7 void a", "8 void a", "9 reserved b"));
    const TSeriesState state = FSeries.List().value(0);
    EXPECT_THAT((QList<qint64>{state.Next, state.Given, state.Void, state.Reserved}),
                ElementsAre(10, 5, 3, 1));
}

/// How a first go at a file ends, and what the second one gets.
TEST_P(Numbers, OfAnEarlierGoComeBackUnlessItEnded) {
    enum class TEnd { Waits, Finished, Void, Lives };
    int n = 0;
    for (const QByteArray& name : HostileNames) {
        const string series = TextOfStored(StoredText(name));
        const auto end = TEnd(n++ % 4);
        auto first = std::make_unique<TLedgerWork>(FRun, SourceOf(name));
        EXPECT_EQ(First(*first, series, 3), 1);
        EXPECT_EQ(First(*first, series, 4), 4);
        if (end == TEnd::Finished)
            FNumbers.Finish(*first, name, {{series, 1, 3, 1}, {series, 4, 4, 4}});
        if (end == TEnd::Void)
            FNumbers.Void(*first);
        if (end != TEnd::Lives)
            first.reset();
        const qint64 lead = end == TEnd::Waits ? 0 : 7;
        TLedgerWork second(FRun, SourceOf(name));
        EXPECT_EQ(First(second, series, 3), lead + 1) << n;
        EXPECT_EQ(First(second, series, 4), lead + 4) << n;
        EXPECT_EQ(First(second, series, 4), lead + 8) << n;
        FSeries.Audit(series, [&](const TAuditRow& row) {
            EXPECT_TRUE(row.File == name && row.Series == series);
            EXPECT_EQ(row.Result, row.State == TNumberState::Given ? name : QByteArray());
        });
    }
    EXPECT_EQ(FSeries.List().size(), HostileNames.size());
}

TEST_P(Numbers, OfAnEarlierGoThatHaveNoUseAreVoid) {
    for (const char* name : {"a", "b"}) { // the same contents
        TLedgerWork first(FRun, SourceOf(name));
        (void)First(first, "S", name[0] == 'a' ? 3 : 1);
    }
    TLedgerWork second(FRun, SourceOf("a"));
    EXPECT_EQ(First(second, "S", 2), 5); // its list has changed
    FNumbers.Finish(second, "a", {{"S", 5, 2, 1}});
    TLedgerWork resumed(FRun, SourceOf("b"));
    EXPECT_EQ(First(resumed, "S", 1), 4);
    FNumbers.Finish(resumed, "b", {{"S", 4, 1, 1}});
    EXPECT_THAT(Audit("S"),
                ElementsAre("1 void a", "2 void a", "3 void a", "4 given b 1", "5 given a 1", "6 given a 2"));
}

/// Whose reservation it is, and how its lease stands.
TEST_P(Numbers, AreTakenOverFromTheDeadOnly) {
    const string elsewhere = QStringLiteral("elsew-here1-run11-77-1");
    struct TCase {
        string Token;
        const char* Lease;
        bool Taken;
    };
    int n = 0;
    for (const TCase& c : {TCase{DeadToken(), "60000", true}, TCase{elsewhere, "60000", false},
                           TCase{elsewhere, "-1", true}, TCase{elsewhere, nullptr, true}}) {
        const string series = QString::number(++n);
        const TNumberSource source = SourceOf("a", series.toLatin1());
        TLedgerWork theirs(FRun, source);
        EXPECT_EQ(First(theirs, series, 2), 1);
        const QByteArray token = '\'' + c.Token.toLatin1() + '\'';
        Change("UPDATE reservations SET token = " + token + " WHERE state = 'reserved'");
        Change("DELETE FROM agents");
        if (c.Lease != nullptr)
            Change("INSERT INTO agents VALUES (" + token + ", 'x', 0, {now} + " + c.Lease + ")");
        TLedgerWork ours(FRun, source);
        const qint64 first = First(ours, series, 2);
        EXPECT_EQ(first, c.Taken ? 1 : 3) << n;
        EXPECT_NE(RaisedBy([&] {
                      FNumbers.Finish(theirs, "a", {{series, 1, 2, 1}});
                  }),
                  "")
            << "they are another's";
        FNumbers.Finish(ours, "a", {{series, first, 2, 1}});
    }
}

TEST_P(Numbers, AreSetUpwardOnlyAndEndSomewhere) {
    TLedgerWork work(FRun, SourceOf("a"));
    FSeries.SetNext("S", 100);
    EXPECT_EQ(First(work, "S", 2), 100);
    EXPECT_TRUE(RaisedBy([&] { FSeries.SetNext("S", 101); }).contains("102"));
    EXPECT_NE(RaisedBy([&] { FSeries.SetNext("New", 0); }), "");
    for (const char* damage : {"UPDATE counters SET next = 2", "DELETE FROM counters"}) {
        Change(damage); // gives no number again
        EXPECT_GE(First(work, "S", 1), 102);
    }
    FSeries.SetNext("S", Most - 2);
    EXPECT_NE(RaisedBy([&] { (void)First(work, "S", 3); }), "");
    EXPECT_EQ(First(work, "S", 2), Most - 2);
    for (const qint64 count : {qint64(1), qint64(0), qint64(-1), Most})
        EXPECT_NE(RaisedBy([&] { (void)First(work, "S", count); }), "");
    EXPECT_NE(RaisedBy([&] { (void)First(work, "", 1); }), "");
}

TEST_P(Numbers, AnAuditReadsMoreThanOneGroup) {
    (void)FSeries.List(); // makes the tables
    Change("INSERT INTO reservations (series, first, count, folder, name, hash, token, work, agent, state, "
           "result,"
           " reserved, ended) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1001)"
           " SELECT 'S', i, 1, '', 'a', '', '', 0, '', 'reserved', '', 1, 0 FROM n");
    EXPECT_EQ(Audit("S").size(), 1001);
    EXPECT_EQ(Audit("S").last(), "1001 reserved a");
}

} // namespace
