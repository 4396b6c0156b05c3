// The configuration is changed under a running agent, in all the ways in which programs save files.
#include "agent/FoldersAgentForm.h"
#include "agent/FoldersThread.h"
#include "agent/SystemRunHost.h"
#include "scenarios/PlayedAgent.h"
#include "testing/Delivery.h"
#include "testing/SamplePdf.h"

#include <array>
#include <sys/inotify.h>

namespace {

QByteArray ActionsWithTitle(const QByteArray& title) {
    return "<ActionManager><ManagerActions><ActionList><Name>Work</Name><Actions>"
           "<Action Class=\"TPDFActionAddDocumentDescription\"><Description><Title>" +
           title + "</Title></Description></Action></Actions></ActionList></ManagerActions></ActionManager>";
}

/// How often a file was opened to be read since the last call.
class TReadings {
public:
    explicit TReadings(const string& path) : FQueue(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
        ::inotify_add_watch(FQueue.Number(), path.toUtf8().constData(),
                            IN_OPEN | IN_CLOSE_NOWRITE); // equal events in a row would be one
    }
    int Take() {
        int count = 0;
        std::array<inotify_event, 64> events; // a watch on a file has no names
        for (ssize_t got = 0; (got = ::read(FQueue.Number(), events.data(), sizeof events)) > 0;)
            for (size_t i = 0; i < size_t(got) / sizeof(inotify_event); ++i)
                count += (events[i].mask & IN_CLOSE_NOWRITE) != 0 ? 1 : 0;
        return count;
    }

private:
    TDescriptor FQueue;
};

/// The machine's clock, which counts its ticks.
struct TCountedClock : TSystemClock {
    void WaitTick() override {
        ++Ticks;
        TSystemClock::WaitTick();
    }
    std::atomic<int> Ticks = 0;
};

/// A form whose ticks are played, while the watch of its folder is real.
class Change : public testing::Test {
protected:
    Change() {
        qputenv("XDG_CONFIG_HOME", FWorkspace.Path("settings").toUtf8());
        qputenv("XDG_RUNTIME_DIR", FWorkspace.Path("settings").toUtf8());
        RegisterActionClasses();
        FForm = std::make_unique<TfrmFoldersAgent>(TFormHost{FClock, FFiles});
        FClock.Play(1);
    }
    ~Change() override {
        FForm.reset();
        qunsetenv("XDG_RUNTIME_DIR");
        qunsetenv("XDG_CONFIG_HOME");
    }
    /// The notice of a change has reached the folders thread.
    bool Noticed() {
        return DeliverUntil([this] { return FForm->FoldersThread()->FDirChanged.load(); });
    }
    /// The title that the list in use gives a document.
    QByteArray TitleInUse() {
        const string name = QString::number(++FDrops) + ".pdf";
        MakePdf(FWorkspace.Path("in/" + name), 1);
        FClock.Play(1);
        const QByteArray info = RunProgram("pdfinfo", {FWorkspace.Path("in/output/" + name)}).Out;
        for (const QByteArray& line : info.split('\n'))
            if (line.startsWith("Title:"))
                return line.mid(6).trimmed();
        return {};
    }

    const TConfiguredWorkspace FWorkspace;
    TPlayedClock FClock;
    TCountedClock FSecondsClock;
    TPlainFiles FFiles;
    std::unique_ptr<TfrmFoldersAgent> FForm;
    int FDrops = 0;
};

} // namespace

TEST_F(Change, EveryWayOfSavingIsPickedUpByTheNextTick) {
    const string path = FWorkspace.Path("c/actions.xml");
    const struct {
        const char* Name;
        std::function<void(const QByteArray&)> Save;
    } ways[] = {
        {"in place", [&](const QByteArray& text) { FWorkspace.Write("c/actions.xml", text); }},
        {"rename",
         [&](const QByteArray& text) {
             const string other = FWorkspace.Write("c/new.xml", text);
             EXPECT_EQ(::rename(other.toUtf8().constData(), path.toUtf8().constData()), 0);
         }},
        {"rename from elsewhere",
         [&](const QByteArray& text) {
             const string other = FWorkspace.Write("new.xml", text);
             EXPECT_EQ(::rename(other.toUtf8().constData(), path.toUtf8().constData()), 0);
         }},
        {"backup, then a new file",
         [&](const QByteArray& text) {
             EXPECT_EQ(::rename(path.toUtf8().constData(), (path + "~").toUtf8().constData()), 0);
             FWorkspace.Write("c/actions.xml", text);
         }},
        {"removed, then a new file",
         [&](const QByteArray& text) {
             QFile::remove(path);
             FWorkspace.Write("c/actions.xml", text);
         }},
    };
    EXPECT_EQ(TitleInUse(), "Worked on");
    for (const auto& way : ways) {
        way.Save(ActionsWithTitle(way.Name));
        ASSERT_TRUE(Noticed()) << way.Name;
        EXPECT_EQ(TitleInUse(), way.Name);
    }
}

TEST_F(Change, TouchingIsNoReload) {
    const QByteArray same = FWorkspace.Read("c/actions.xml");
    TReadings readings(FWorkspace.Path("c/actions.xml"));
    FWorkspace.Write("c/actions.xml", same);
    ASSERT_TRUE(Noticed());
    FClock.Play(1);
    const int touched = readings.Take();
    FWorkspace.Write("c/actions.xml", ActionsWithTitle("other"));
    ASSERT_TRUE(Noticed());
    FClock.Play(1);
    EXPECT_EQ(readings.Take(), touched + 1); // one more: the file was parsed, not only looked at
    EXPECT_EQ(TitleInUse(), "other");
}

TEST_F(Change, AThousandRapidWritesEndNothingAndReloadSeldom) {
    FForm.reset();
    FForm = std::make_unique<TfrmFoldersAgent>(TFormHost{FSecondsClock, FFiles});
    TReadings readings(FWorkspace.Path("c/actions.xml"));
    std::atomic<bool> written = false;
    std::thread writer([&] {
        for (int i = 0; i < 1000; ++i) {
            FWorkspace.Write("c/actions.xml", ActionsWithTitle(QByteArray::number(i)));
            ::usleep(2000);
        }
        written = true;
    });
    EXPECT_TRUE(DeliverUntil([&] { return written.load(); }));
    writer.join();
    EXPECT_LE(readings.Take(), 20 * (FSecondsClock.Ticks + 1)); // a few for each tick
    FWorkspace.Write("c/actions.xml", ActionsWithTitle("last"));
    EXPECT_TRUE(DeliverUntil([&] { return FForm->FoldersThread()->FDirChanged.load(); }));
    EXPECT_TRUE(DeliverUntil([&] { return !FForm->FoldersThread()->FDirChanged.load(); }));
    EXPECT_FALSE(FForm->FoldersThread()->Finished());
    MakePdf(FWorkspace.Path("in/a.pdf"), 1);
    EXPECT_TRUE(DeliverUntil([&] { return FWorkspace.Has("in/process/a.pdf"); }));
    EXPECT_TRUE(RunProgram("pdfinfo", {FWorkspace.Path("in/output/a.pdf")}).Out.contains("last"));
}
