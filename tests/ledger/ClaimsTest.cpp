#include "ledger/Claims.h"

#include "LedgerFixture.h"
#include "testing/DeadToken.h"

namespace {

class Claims : public TLedgerTest {
protected:
    TLedgerConnection FLedger{Place};
    TLedgerRun FRun{Place, QStringLiteral("me"), {std::chrono::hours(1), std::chrono::milliseconds(5)}};
    TClaims FClaims{FLedger, FRun};
    TLedgerWork FWork{FRun, SourceOf("a.pdf")};
    TLedgerWork FOther{FRun, SourceOf("a.pdf")};
    TClaimedFile FFile{QStringLiteral("uuid"), "a.pdf", 100, 1'700'000'000'123'456'789, 42};
    TPublishing FPublishing{"r.pdf", ".part", 99, 7, 2, {{QStringLiteral("S"), 1, 2, 1}}};
};
ON_EACH_LEDGER(Claims);

TEST_P(Claims, AreOnesUntilTheyEnd) {
    for (const QByteArray& name : HostileNames) {
        FFile.Name = FPublishing.Result = name;
        const TClaim claim = FClaims.Take(FWork, FFile);
        EXPECT_NE(claim.Id, 0);
        const TClaim refused = FClaims.Take(FOther, FFile);
        EXPECT_EQ(refused.Id, 0);
        EXPECT_EQ(refused.Agent, "me");
        EXPECT_FALSE(FClaims.BeginPublishing(FOther, claim, FPublishing));
        FClaims.End(FOther, claim); // not its own
        EXPECT_TRUE(FClaims.BeginPublishing(FWork, claim, FPublishing));
        FClaims.End(FWork, claim);
        const TClaim next = FClaims.Take(FOther, FFile); // a second drop
        EXPECT_NE(next.Id, 0);
        EXPECT_FALSE(next.Left);
    }
}

/// Whose claim it is, what it was at, and what who comes next gets.
TEST_P(Claims, OfTheDeadAreTakenOverWithWhatTheyLeft) {
    const string elsewhere = QStringLiteral("elsew-here1-run11-77-1");
    struct TCase {
        string Token;
        bool Published;
        int Lease; // ms from now
        quint64 Inode;
        bool Taken;
        bool Left;
    };
    for (const TCase& c :
         {TCase{DeadToken(), false, 60'000, 42, true, false},
          TCase{DeadToken(), true, 60'000, 42, true, true},
          TCase{DeadToken(), true, 60'000, 43, true, true}, // of another file of that name and time
          TCase{elsewhere, true, 60'000, 42, false, false}, TCase{elsewhere, true, -1, 42, true, true},
          TCase{elsewhere, false, -1, 42, true, false}}) {
        Change("DELETE FROM claims");
        Change("DELETE FROM agents");
        const TClaim theirs = FClaims.Take(FWork, FFile);
        EXPECT_TRUE(!c.Published || FClaims.BeginPublishing(FWork, theirs, FPublishing));
        const QByteArray token = '\'' + c.Token.toLatin1() + '\'';
        Change("UPDATE claims SET token = " + token);
        Change("INSERT INTO agents VALUES (" + token + ", 'x', 0, {now} + " + QByteArray::number(c.Lease) +
               ")");
        FFile.Inode = c.Inode;
        const TClaim taken = FClaims.Take(FOther, FFile);
        FFile.Inode = 42;
        EXPECT_EQ(taken.Id != 0, c.Taken);
        EXPECT_EQ(taken.Left.has_value(), c.Left);
        EXPECT_TRUE(!c.Left || *taken.Left == FPublishing);
        EXPECT_EQ(taken.LeftByOther, c.Inode != 42);
        EXPECT_FALSE(FClaims.BeginPublishing(FWork, theirs, FPublishing)) << "it was taken for dead";
    }
}

TEST_P(Claims, AreKeptByALeaseThatIsRenewedWhileWorkLives) {
    EXPECT_NE(FClaims.Take(FWork, FFile).Id, 0);
    Change("UPDATE agents SET lease = 0");
    int tries = 10'000;
    while (Number("SELECT COUNT(*) FROM agents WHERE lease > {now}") == 0 && --tries > 0)
        ::usleep(1000);
    EXPECT_GT(tries, 0);
}

} // namespace
