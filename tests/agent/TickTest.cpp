// The tick: whose turn it is, what is loaded again, midnight, stopping.
#include "agent/PlayedRun.h"
#include "base/FaultPoint.h"
#include "testing/Failing.h"

#include <QRegularExpression>
#include <QScopeGuard>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

class Tick : public TPlayedRun {
protected:
    /// Gives a file of the configuration a last-write time that many seconds from now.
    void Touch(const string& name, int seconds) const {
        const timespec now{::time(nullptr) + seconds, 0};
        const timespec times[2] = {now, now};
        ASSERT_EQ(::utimensat(AT_FDCWD, FWorkspace.Path(name).toUtf8(), times, 0), 0);
    }
    void ConfigureDisabled(const string& name, const string& every) {
        WriteFolders(
            Narrow("<Folder><Name>" + name + "</Name><CheckEvery>" + every + "</CheckEvery></Folder>"));
    }
    int DisabledLines(const string& name) const {
        return int(Log().count("Folder \"" + name + "\" is disabled."));
    }
};

TEST_F(Tick, TurnsComeWhenTheCounterDividesEvenly) {
    WriteFolders("<Folder><Name>/a</Name><CheckEvery>1</CheckEvery></Folder>"
                 "<Folder><Name>/b</Name><CheckEvery>60</CheckEvery></Folder>"
                 "<Folder><Name>/c</Name><CheckEvery>-30</CheckEvery></Folder>"
                 "<Folder><Name>/d</Name><CheckEvery>0</CheckEvery></Folder>"
                 "<Folder><Name>/e</Name><CheckEvery>9223372036854775807</CheckEvery></Folder>");
    Play(120);
    EXPECT_EQ(DisabledLines("/a"), 120);
    EXPECT_EQ(DisabledLines("/b"), 2);
    EXPECT_EQ(DisabledLines("/c"), 4) << "a negative interval acts like its absolute value";
    EXPECT_EQ(DisabledLines("/d") + DisabledLines("/e"), 0);
}

TEST_F(Tick, ADayOfTicksMakesOneLogADay) {
    ConfigureDisabled("/a", "3600");
    FClock.SetNow(QDateTime(QDate(2026, 11, 15), QTime(23, 59, 58)));
    Play(2 * 24 * 3600);
    EXPECT_EQ(FWorkspace.Names("c/logs"),
              QStringList({"2026.11.15.txt", "2026.11.16.txt", "2026.11.17.txt"}));
    EXPECT_EQ(LogLines("2026.11.16").filter("disabled").size(), 24);
}

TEST_F(Tick, JumpsOfTheClockNeitherLoseNorRepeatWork) {
    ConfigureOne();
    const auto jumpTo = [&](const QDateTime& now, const string& name) {
        FClock.SetNow(now);
        Drop(name);
        Play(2);
    };
    Drop("a.pdf");
    Play(2);
    jumpTo(QDateTime(QDate(2026, 11, 16), QTime(12, 0)), "day.pdf"); // a day forward, or a machine that slept
    jumpTo(QDateTime(QDate(2026, 11, 16), QTime(11, 0)), "hour.pdf"); // an hour back
    jumpTo(QDateTime(QDate(2026, 11, 14), QTime(12, 0)), "back.pdf"); // days back: the log stays
    EXPECT_EQ(Tree(), "output/a.pdf output/back.pdf output/day.pdf output/hour.pdf "
                      "process/a.pdf process/back.pdf process/day.pdf process/hour.pdf");
    EXPECT_EQ(FWorkspace.Names("c/logs"), QStringList({"2026.11.15.txt", "2026.11.16.txt"}));
    EXPECT_EQ(LogLines("2026.11.15").filter("Saving").size(), 1);
    EXPECT_EQ(LogLines("2026.11.16").filter("Saving").size(), 3);
}

TEST_F(Tick, TheCounterWrapsToATurnOfEveryFolder) {
    WriteFolders("<Folder><Name>/a</Name><CheckEvery>1</CheckEvery></Folder>"
                 "<Folder><Name>/b</Name><CheckEvery>1000000</CheckEvery></Folder>");
    FSettings.FirstTick = std::numeric_limits<qint32>::max() - 2;
    Play(3); // one before the wrap, the wrap, one after it
    EXPECT_EQ(DisabledLines("/a"), 3);
    EXPECT_EQ(DisabledLines("/b"), 1);
}

TEST_F(Tick, OldDayLogsGo) {
    ConfigureDisabled("/a", "1");
    const QStringList others = {"2026.02.30.txt", "2026.11.01.txt.gz", "notes.txt"};
    for (const string& name : QStringList({"2026.11.01.txt", "2026.11.12.txt", "2026.11.13.txt"}) + others)
        FWorkspace.Write("c/logs/" + name, "x");
    FSettings.KeepDays = 2;
    Play();
    EXPECT_EQ(FWorkspace.Names("c/logs"),
              QStringList({others[0], others[1], "2026.11.13.txt", "2026.11.15.txt", others[2]}));
    FClock.SetNow(QDateTime(QDate(2026, 11, 16), QTime(12, 0)));
    Play();
    EXPECT_FALSE(FWorkspace.Has("c/logs/2026.11.13.txt"));
}

TEST_F(Tick, WithoutAPlaceForTheLogTheFoldersAreServed) {
    ConfigureOne();
    FWorkspace.Write("c/logs", "a file");
    Drop("a.pdf");
    testing::internal::CaptureStderr();
    Play(5);
    EXPECT_EQ(QByteArray::fromStdString(testing::internal::GetCapturedStderr()).count('\n'), 1)
        << "told once";
    EXPECT_EQ(Tree(), "output/a.pdf process/a.pdf");
    QFile::remove(FWorkspace.Path("c/logs"));
    Play();
    EXPECT_TRUE(FWorkspace.Has("c/logs/2026.11.15.txt"));
}

// Each way in which a file becomes another, and whether anybody is told of it.
TEST_F(Tick, AChangedFileIsLoadedHoweverItChanged) {
    ConfigureDisabled("/a", "1");
    WriteActions({});
    QDir().rename(FWorkspace.Path("c/watchedfolders.xml"), FWorkspace.Path("target.xml"));
    QFile::link(FWorkspace.Path("target.xml"), FWorkspace.Path("c/watchedfolders.xml"));
    Play();
    EXPECT_EQ(DisabledLines("/a"), 1) << "through a link";
    const auto served = [&](const string& name) {
        Play();
        return DisabledLines(name);
    };
    ConfigureDisabled("/target", "1");
    EXPECT_EQ(served("/target"), 1);
    ConfigureDisabled("/older", "1");
    Touch("c/watchedfolders.xml", -200);
    EXPECT_EQ(served("/older"), 1);
    QFile::remove(FWorkspace.Path("c/watchedfolders.xml"));
    FThread->FDirChanged = true;
    Play();
    EXPECT_TRUE(FThread->FDirChanged) << "a missing file is looked for";
    EXPECT_EQ(DisabledLines("/older"), 2) << "and the last version stays";
    FWorkspace.Write("other", FWorkspace.Read("target.xml").replace("/older", "/hard"));
    ASSERT_EQ(::link(FWorkspace.Path("other").toUtf8(), FWorkspace.Path("c/watchedfolders.xml").toUtf8()), 0);
    EXPECT_EQ(served("/hard"), 1);
    EXPECT_FALSE(FThread->FDirChanged);
    FWorkspace.Write("c2/watchedfolders.xml", FWorkspace.Read("other").replace("/hard", "/replaced"));
    QDir().rename(FWorkspace.Path("c"), FWorkspace.Path("c1"));
    QDir().rename(FWorkspace.Path("c2"), FWorkspace.Path("c"));
    EXPECT_EQ(served("/replaced"), 1) << "another folder has its place, which has no logs yet";
    QFile::remove(FWorkspace.Path("c/watchedfolders.xml"));
    FThread->FRefreshFolders = true;
    EXPECT_EQ(served("/replaced"), 1) << "a refresh takes a missing file for an empty one";
}

TEST_F(Tick, AFileThatIsWrittenIsReadLaterRefreshOrNot) {
    ConfigureDisabled("/a", "1");
    WriteActions({});
    {
        const TFailing written("lease", EAGAIN); // the answer while anybody has the file open for writing
        Play(2);
        EXPECT_EQ(FStatus.Agent(), TAgentState::Waiting);
    }
    Play();
    EXPECT_EQ(DisabledLines("/a"), 1);
    for (std::atomic<bool>* flag : {&FThread->FDirChanged, &FThread->FRefreshFolders}) {
        ConfigureDisabled("/b", "1");
        {
            const TFailing written("lease", EAGAIN);
            *flag = true;
            Play(2);
            EXPECT_EQ(DisabledLines("/b"), 0);
        }
        ConfigureDisabled("/a", "1");
        Play();
    }
    EXPECT_EQ(DisabledLines("/a"), 7);
}

TEST_F(Tick, AFaultyFileLeavesTheLastGoodOneInForce) {
    ConfigureOne();
    Play();
    struct TFault {
        NarrowString Folders;
        const char* Said;
    };
    const TFault faults[] = {
        {"<Wat", "line 1, column 5"},
        {"<WatchedFolder><Folders>\n<Folder><CheckEvery>often</CheckEvery></Folder></Folders></"
         "WatchedFolder>",
         "line 2"},
        {"", "watchedfolders.xml"},
    };
    for (const bool refresh : {false, true})
        for (const TFault& fault : faults) {
            FWorkspace.Write("c/watchedfolders.xml", fault.Folders);
            FThread->FRefreshFolders = refresh;
            Drop("a.pdf");
            testing::internal::CaptureStderr();
            Play(3);
            const string said = Widen(testing::internal::GetCapturedStderr().c_str());
            EXPECT_TRUE(said.contains(fault.Said)) << said.toStdString();
            EXPECT_EQ(said.count('\n'), 1) << "told once";
            EXPECT_TRUE(FStatus.ToJson().contains(fault.Said));
            EXPECT_FALSE(FWorkspace.Has("in/a.pdf"));
        }
    QDir().mkpath(FWorkspace.Path("in/next"));
    WriteFolders(Folder(FWorkspace.Path("in/next"), "Rotate"));
    MakePdf(FWorkspace.Path("in/next/b.pdf"), 1);
    Play();
    EXPECT_TRUE(FWorkspace.Has("in/next/output/b.pdf")) << "the next good one, without a restart";
    EXPECT_TRUE(FStatus.Troubles().empty());
}

TEST_F(Tick, TheFirstStartWaitsForAGoodVersion) {
    ConfigureOne();
    FWorkspace.Write("c/actions.xml", "<Act");
    Drop("a.pdf");
    Play(3);
    EXPECT_EQ(Tree(), "/a.pdf") << "without its list the file would have no result";
    EXPECT_EQ(FStatus.Agent(), TAgentState::Waiting);
    EXPECT_TRUE(FStatus.Summary().contains("actions.xml"));
    WriteActions(List("Rotate", RotateAction));
    Play();
    EXPECT_EQ(Tree(), "output/a.pdf process/a.pdf");
    EXPECT_EQ(FStatus.Agent(), TAgentState::Serving);
}

// As with a file of another user, or on some network file systems.
TEST_F(Tick, WhereNobodyTellsWhoWritesTheFileMustBeQuiet) {
    SetFaultHook([](const char* call) { return std::strcmp(call, "lease") == 0 ? EACCES : 0; });
    const auto after = qScopeGuard([] { SetFaultHook(nullptr); });
    ConfigureDisabled("/a", "1");
    Play();
    EXPECT_EQ(FStatus.Agent(), TAgentState::Waiting);
    Play(2);
    EXPECT_EQ(FStatus.Agent(), TAgentState::Serving);
    for (const char* half : {"<Wat", "<WatchedFolder>"}) {
        FWorkspace.Write("c/watchedfolders.xml", half); // as by a program that saves in several writes
        Play(2);
    }
    ConfigureDisabled("/b", "1");
    Play(3);
    EXPECT_EQ(DisabledLines("/b"), 1);
    EXPECT_TRUE(FStatus.Troubles().empty());
    FThread->Terminate(); // before the hook changes
    FThread->WaitFor();
}

TEST_F(Tick, MissingFilesAreNoFailure) {
    Play(2);
    EXPECT_TRUE(FWorkspace.Has("c/logs/2026.11.15.txt"));
}

/// Stops the run while it waits for its disk ("create part" comes before the actions, "write" behind them).
TEST_F(Tick, AStopPublishesWhatIsDoneAndNothingElse) {
    static TWatchedFoldersThread* stopped;
    static const char* when;
    for (const char* moment : {"create part", "write"}) {
        ConfigureOne();
        Drop("a.pdf");
        Drop("b.pdf");
        Start();
        stopped = FThread.get();
        when = moment;
        SetFaultHook([](const char* call) {
            if (std::strcmp(call, when) == 0)
                stopped->Terminate();
            return 0;
        });
        FClock.PlayOne();
        FThread->WaitFor();
        SetFaultHook(nullptr);
        if (std::strcmp(moment, "write") != 0) {
            EXPECT_EQ(Tree(), "/a.pdf /b.pdf") << "the sources wait for the next start";
            EXPECT_FALSE(Log().contains("Saving"));
        } else {
            EXPECT_EQ(Tree(), "/b.pdf output/a.pdf process/a.pdf");
        }
        EXPECT_FALSE(Log().contains("b.pdf"));
        FThread.reset();
    }
}
