// The tick: whose turn it is, what is loaded again, midnight, stopping.
#include "agent/PlayedRun.h"
#include "base/BusyFile.h"

#include <QRegularExpression>

#include <fcntl.h>
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

TEST_F(Tick, AClockSetBackKeepsTheLog) {
    ConfigureDisabled("/a", "1");
    Play();
    FClock.SetNow(QDateTime(QDate(2026, 11, 14), QTime(12, 0)));
    Play();
    EXPECT_EQ(FWorkspace.Names("c/logs"), QStringList("2026.11.15.txt"));
}

TEST_F(Tick, ChangedFileIsLoadedOnceItIsNewerAndDifferent) {
    ConfigureDisabled("/a", "1");
    Touch("c/watchedfolders.xml", -100);
    Play();
    const auto change = [&](const string& name, int seconds) {
        ConfigureDisabled(name, "1");
        Touch("c/watchedfolders.xml", seconds);
        FThread->FDirChanged = true;
        Play();
        return DisabledLines(name);
    };
    EXPECT_EQ(change("/older", -200), 0) << "a time that moved backwards is no change";
    EXPECT_EQ(change("/newer", -50), 1);
    EXPECT_TRUE(FThread->FDirChanged) << "actions.xml is absent: the flag stays up";
    WriteActions({});
    Play();
    EXPECT_FALSE(FThread->FDirChanged);
    ConfigureDisabled("/unnoticed", "1");
    Touch("c/watchedfolders.xml", 0);
    Play();
    EXPECT_EQ(DisabledLines("/unnoticed"), 0) << "nobody raised the flag";
}

TEST_F(Tick, FileOpenForWritingIsLookedAtLater) {
    ConfigureDisabled("/a", "1");
    WriteActions({});
    Touch("c/watchedfolders.xml", -100);
    Play();
    ConfigureDisabled("/b", "1");
    const int writer = ::open(FWorkspace.Path("c/watchedfolders.xml").toUtf8(), O_WRONLY);
    if (!HeldForWriting(FWorkspace.Path("c/watchedfolders.xml"))) {
        ::close(writer);
        return; // this file system can't tell
    }
    FThread->FDirChanged = true;
    Play();
    EXPECT_EQ(DisabledLines("/b"), 0);
    EXPECT_TRUE(FThread->FDirChanged);
    ::close(writer);
    Play();
    EXPECT_EQ(DisabledLines("/b"), 1);
}

TEST_F(Tick, AFileOpenForWritingAtTheStartIsReadOnceItIsClosed) {
    WriteActions({});
    FWorkspace.Write("c/watchedfolders.xml", "<Wat"); // half of it
    const int writer = ::open(FWorkspace.Path("c/watchedfolders.xml").toUtf8(), O_WRONLY);
    if (HeldForWriting(FWorkspace.Path("c/watchedfolders.xml"))) {
        Play();
        EXPECT_FALSE(FThread->Finished());
    }
    ::close(writer);
    ConfigureDisabled("/a", "1");
    Play();
    EXPECT_EQ(DisabledLines("/a"), 1);
}

TEST_F(Tick, RefreshLoadsWhateverTheTime) {
    ConfigureDisabled("/a", "1");
    Play();
    ConfigureDisabled("/b", "1");
    Touch("c/watchedfolders.xml", -1000);
    FThread->FRefreshFolders = true;
    Play();
    EXPECT_EQ(DisabledLines("/b"), 1);
    EXPECT_FALSE(FThread->FRefreshFolders);
}

TEST_F(Tick, RefreshOfABrokenFileEndsThePassNotTheThread) {
    ConfigureOne();
    Play();
    FWorkspace.Write("c/watchedfolders.xml", "<Wat");
    FThread->FRefreshFolders = true;
    Drop("a.pdf");
    Play(2);
    EXPECT_EQ(Tree(), "/a.pdf") << "the list was emptied before the file was read";
    ConfigureOne();
    FThread->FRefreshFolders = true;
    Play();
    EXPECT_EQ(Tree(), "output/a.pdf process/a.pdf");
}

TEST_F(Tick, MissingFilesAreNoFailure) {
    Play(2);
    EXPECT_TRUE(FWorkspace.Has("c/logs/2026.11.15.txt"));
}

TEST_F(Tick, StopBetweenActionsSavesAndKeepsTheSource) {
    /// Stops the thread when the first action has been announced.
    class TStoppingHint : public TTrayHint {
    public:
        void SetHint(const string& text) override {
            if (text.startsWith("Executing"))
                Thread->Terminate();
        }
        TWatchedFoldersThread* Thread = nullptr;
    };
    ConfigureOne();
    WriteActions(List("Rotate", RotateAction + RotateAction));
    Drop("a.pdf");
    Drop("b.pdf");
    TStoppingHint hint;
    RegisterActionClasses();
    TWatchedFoldersThread thread(FWorkspace.Path("c/"), {FClock, FFiles, hint, FStatus});
    hint.Thread = &thread;
    FClock.PlayOne();
    thread.WaitFor();
    EXPECT_EQ(Tree(), "/a.pdf /b.pdf output/a.pdf") << "the source waits for the next start";
    EXPECT_TRUE(
        RunProgram("pdfinfo", {FWorkspace.Path("in/output/a.pdf")}).Out.contains("Page rot:        90"))
        << "one action of two ran";
    EXPECT_FALSE(Log().contains("b.pdf"));
}
