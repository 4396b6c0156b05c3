// A ledger that can't be used: the one exception, and the queue that outlives it.
#include "LedgerFixture.h"
#include "ledger/LedgerQueue.h"

#include <csignal>
#include <sys/resource.h>

namespace {

using namespace std::chrono_literals;

bool Becomes(const std::function<bool()>& isSo) {
    for (int tries = 0; tries < 10'000 && !isSo(); ++tries)
        ::usleep(1000);
    return isSo();
}

TFileRecord Record(int i) {
    TFileRecord record;
    record.Name = QByteArray::number(i);
    record.Ended = 4'000'000'000'000; // is pruned by nobody
    return record;
}

class Queue : public TLedgerTest {
protected:
    Queue() { (void)Number("SELECT 1"); } // makes the tables
    [[nodiscard]] TLedgerQueueSettings Settings() const { return {Place, "me", 90, 5, 1ms, 1ms}; }
    [[nodiscard]] QByteArray Names() const {
        QByteArray names;
        TLedgerConnection ledger(Place);
        for (const THistoryRow& row : THistory(ledger).Find({}))
            names.prepend(row.Record.Name + ' ');
        return names;
    }
};
ON_EACH_LEDGER(Queue);

TEST_P(Queue, WritesInOrderAndAtItsEnd) {
    {
        TLedgerQueue queue(Settings());
        queue.Add(Record(1));
        EXPECT_TRUE(queue.Flush(60s));
        EXPECT_EQ(Names(), "1 ");
        for (int i = 2; i <= 5; ++i)
            queue.Add(Record(i));
    }
    EXPECT_EQ(Names(), "1 2 3 4 5 ");
}

TEST_P(Queue, CutsWhatNobodyReadsAndPrunes) {
    TLedgerQueue queue(Settings());
    TFileRecord record = Record(1);
    record.Reasons = QList<TRecordReason>(2000, {"other", {}, QString(100'000, u'x')});
    queue.Add(record);
    ASSERT_TRUE(queue.Flush(60s));
    EXPECT_LT(Number("SELECT LENGTH(reasons) FROM files"), 5'000'000);
    record.Ended = 1000; // long ago
    TLedgerQueue(Settings()).Add(record);
    EXPECT_EQ(Number("SELECT SUM(files) FROM totals"), 2);
    EXPECT_EQ(Number("SELECT COUNT(*) FROM files"), 1);
}

TEST_P(Queue, KeepsTheNewestWhileTheLedgerIsAway) {
    Change("ALTER TABLE files RENAME TO away");
    TLedgerQueue queue(Settings());
    for (int i = 1; i <= 8; ++i)
        queue.Add(Record(i));
    EXPECT_TRUE(Becomes([&] { return queue.State().Dropped == 3 && queue.State().Fault != ""; }));
    EXPECT_FALSE(queue.Flush(0s));
    EXPECT_EQ(queue.State().Waiting, 5);
    EXPECT_TRUE(queue.State().Fault.contains(Place.Name())) << queue.State().Fault.toStdString();
    Change("ALTER TABLE away RENAME TO files");
    EXPECT_TRUE(queue.Flush(60s));
    EXPECT_EQ(Names(), "4 5 6 7 8 ");
    EXPECT_EQ(queue.State().Written, 5);
    EXPECT_EQ(queue.State().Fault, "");
}

TEST_P(Queue, DropsWhatTheDatabaseRefusesAndNothingElse) {
    Change("CREATE UNIQUE INDEX once ON files (name)");
    TLedgerQueue queue(Settings());
    for (const int i : {1, 2, 1, 3})
        queue.Add(Record(i));
    EXPECT_TRUE(queue.Flush(60s));
    EXPECT_EQ(Names(), "1 2 3 ");
    EXPECT_EQ(queue.State().Dropped, 1);
    EXPECT_EQ(queue.State().Written, 3);
}

TEST(LedgerFaults, OfTheFileAreToldAndOver) {
    NeedApplication();
    constexpr qint64 FolderInstead = -1;
    constexpr qint64 FileInstead = -2;
    struct TCase {
        string Spoilt;
        qint64 At; // where it is overwritten
        QByteArray Bytes;
        const char* Text;
    };
    const TWorkspace space;
    const TLedgerPlace place = ParseLedgerPlace(space.Path("state/ledger.sqlite"));
    const string folder = space.Path("state");
    const auto write = [&] {
        TLedgerConnection ledger(place);
        TSeries(ledger).SetNext("S", 2);
    };
    for (const TCase& c : QList<TCase>{
             {place.Path, FolderInstead, {}, "unable to open"},
             {folder, FileInstead, {}, "Not a directory"},
             {place.Path, 0, QByteArray(4096, 'x'), "Move it away"},
             {place.Path, 4096, QByteArray(1 << 20, '\xFF'), "Move it away"},
             // A format that may be read only (sqlite.org/fileformat2.html, 1.3.4): so it is for root, too.
             {place.Path, 18, "\x03", "readonly"}}) {
        EXPECT_EQ(RaisedBy(write), "");
        QFile file(c.Spoilt);
        if (c.At < 0) {
            EXPECT_TRUE(c.At == FileInstead ? QDir(c.Spoilt).removeRecursively() : file.remove());
            EXPECT_TRUE(c.At == FileInstead ? file.open(QIODevice::WriteOnly) : QDir().mkpath(c.Spoilt));
        } else {
            EXPECT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(c.At) && file.write(c.Bytes) > 0);
        }
        file.close();
        const string message = RaisedBy(write);
        EXPECT_TRUE(message.contains(place.Path) && message.contains(c.Text)) << message.toStdString();
        EXPECT_TRUE(QFile::remove(folder) || QDir(folder).removeRecursively());
    }
    EXPECT_EQ(RaisedBy(write), "");
}

TEST(LedgerFaults, AFullDiskCostsNothingThatWasWritten) {
    NeedApplication();
    const TWorkspace space;
    TLedgerQueue queue({ParseLedgerPlace(space.Path("l.sqlite")), "me", 90, 1000, 1ms, 1ms});
    queue.Add(Record(1));
    ASSERT_TRUE(queue.Flush(60s));
    struct rlimit before {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const struct rlimit full { 1, before.rlim_max }; // bytes that a file may hold
    ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &full);
    queue.Add(Record(2));
    const bool isTold = Becomes([&] { return queue.State().Fault != ""; });
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(isTold);
    EXPECT_TRUE(queue.Flush(60s));
    TLedgerConnection ledger(ParseLedgerPlace(space.Path("l.sqlite")));
    EXPECT_EQ(THistory(ledger).Totals().value(0).Files, 2);
}

} // namespace
