// Agents that are killed at any instant, several at once: no number is given twice, and each is accounted
// for.
#include "LedgerFixture.h"
#include "ledger/Numbers.h"

#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/wait.h>

namespace {

constexpr int Files = 12; // of two contents, so that they contend for the same reservations

TNumberSource Source(unsigned file) {
    return SourceOf("f" + QByteArray::number(file), file % 2 == 0 ? "even" : "odd");
}

/// An agent that works until it is killed. What it gave, it says in one write.
void Work(const TLedgerPlace& place, unsigned seed, int log) {
    std::mt19937 random(seed);
    TLedgerConnection ledger(place);
    TLedgerRun run(place, QStringLiteral("agent"));
    TNumbers numbers(ledger, run);
    for (;;) {
        TLedgerWork work(run, Source(random() % Files));
        const TReservation made = numbers.Reserve(work, "S", 1 + random() % 3);
        const unsigned end = random() % 4; // 0: a stop
        if (end == 1)
            numbers.Void(work);
        if (end <= 1)
            continue;
        numbers.Finish(work, "r", {{"S", made.First, made.Count, 1}});
        QByteArray lines;
        for (qint64 i = 0; i < made.Count; ++i)
            lines += QByteArray::number(made.First + i) + '\n';
        (void)!::write(log, lines.constData(), size_t(lines.size()));
    }
}

class Kills : public TLedgerTest {};
ON_EACH_LEDGER(Kills);

TEST_P(Kills, NoNumberIsGivenTwiceAndEachIsAccountedFor) {
    const int kills = std::max(20, qEnvironmentVariableIntValue("MORVANE_LEDGER_KILLS"));
    (void)Number("SELECT 1"); // makes the tables
    const int log = ::open(FSpace.Write("log", {}).toUtf8().constData(), O_WRONLY | O_APPEND | O_CLOEXEC);
    std::mt19937 random(1);
    std::vector<pid_t> agents(3, 0);
    const auto start = [&](pid_t& agent) {
        const unsigned seed = random();
        if (agent = ::fork(); agent == 0) {
            (void)RaisedBy([&] { Work(Place, seed, log); });
            ::_exit(3);
        }
    };
    const auto stop = [](pid_t agent) {
        int status = 0;
        ::kill(agent, SIGKILL);
        ::waitpid(agent, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself";
    };
    for (pid_t& agent : agents)
        start(agent);
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        ::usleep(random() % 60'000);
        for (int tries = 0; tries < 10'000 && FSpace.Read("log").count('\n') <= i; ++tries)
            ::usleep(1000); // so that there is work between any two
        pid_t& agent = agents[random() % agents.size()];
        stop(agent);
        start(agent);
    }
    for (const pid_t agent : agents)
        stop(agent);
    ::close(log);

    // The files are dropped again, and fail.
    TLedgerConnection ledger(Place);
    TLedgerRun run(Place, QStringLiteral("last"));
    TNumbers numbers(ledger, run);
    for (unsigned file = 0; file < Files; ++file) {
        TLedgerWork work(run, Source(file));
        numbers.Reserve(work, QStringLiteral("S"), 1);
        numbers.Void(work);
    }
    std::vector<TNumberState> states;
    TSeries(ledger).Audit("S", [&](const TAuditRow& row) {
        EXPECT_EQ(row.Number, qint64(states.size()) + 1) << "each is there once, in order";
        states.push_back(row.State);
    });
    const TSeriesState state = TSeries(ledger).List().value(0);
    EXPECT_EQ(state.Next, qint64(states.size()) + 1);
    EXPECT_EQ(state.Reserved, 0);
    EXPECT_EQ(state.Given, std::count(states.begin(), states.end(), TNumberState::Given));
    EXPECT_EQ(state.Given + state.Void, qint64(states.size()));
    std::set<qint64> told;
    for (const QByteArray& line : FSpace.Read("log").trimmed().split('\n')) {
        EXPECT_TRUE(told.insert(line.toLongLong()).second) << line.constData() << " was given twice";
        EXPECT_EQ(states.at(size_t(line.toLongLong()) - 1), TNumberState::Given) << line.constData();
    }
}

} // namespace
