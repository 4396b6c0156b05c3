#include "platform/AppInstances.h"
#include "base/Exceptions.h"
#include "platform/RuntimeFolder.h"
#include "testing/Delivery.h"
#include "testing/RuntimeFolder.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

const QString Identity = QStringLiteral("{TEST-IDENTITY}");

using AppInstancesTest = TRuntimeFolderTest;

TEST_F(AppInstancesTest, AdmitsAsManyAsTheLimitAndFreesAPlaceWithItsHolder) {
    auto first = JclAppInstances(Identity);
    EXPECT_FALSE(first->CheckInstance(0));
    EXPECT_TRUE(first->CheckInstance(1));
    EXPECT_TRUE(first->CheckInstance(1)); // it is entered already
    const auto second = JclAppInstances(Identity);
    EXPECT_FALSE(second->CheckInstance(1));
    EXPECT_TRUE(JclAppInstances("{OTHER}")->CheckInstance(1));
    EXPECT_TRUE(second->CheckInstance(2));
    const auto third = JclAppInstances(Identity);
    EXPECT_FALSE(third->CheckInstance(2));
    struct stat lock {};
    ASSERT_EQ(::stat(Path(Identity + ".0.lock").toUtf8().constData(), &lock), 0);
    EXPECT_EQ(lock.st_mode & 07777, 01600u); // sticky: sweepers of old files leave it
    first.reset();
    EXPECT_TRUE(third->CheckInstance(2));
}

TEST_F(AppInstancesTest, AProcessThatDiesFreesItsPlace) {
    int ready[2];
    ASSERT_EQ(::pipe2(ready, O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const auto instances = JclAppInstances(Identity);
        const bool within = instances->CheckInstance(1);
        [[maybe_unused]] const ssize_t told = ::write(ready[1], &within, 1);
        ::pause();
    }
    bool within = false;
    ASSERT_EQ(::read(ready[0], &within, 1), 1);
    EXPECT_TRUE(within);
    const auto instances = JclAppInstances(Identity);
    EXPECT_FALSE(instances->CheckInstance(1));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(instances->CheckInstance(1));
}

TEST_F(AppInstancesTest, TheCommandLineReachesTheWindowsOfTheClass) {
    std::vector<TMessage> received;
    const THiddenWindow form([&](TMessage& m) { received.push_back(m); }, "TfrmForm");
    const THiddenWindow other([](TMessage&) { FAIL() << "a window of another class"; }, "TfrmOther");
    const auto first = JclAppInstances(Identity);
    ASSERT_TRUE(first->CheckInstance(1));
    const auto second = JclAppInstances(Identity);
    ASSERT_FALSE(second->CheckInstance(1));
    EXPECT_EQ(second->SendCmdLineParams("TfrmForm", 5), 1);
    EXPECT_EQ(first->SendCmdLineParams("TfrmForm", 5), 0); // not to itself
    first->Receive();
    EXPECT_EQ(TMessageQueue::OfThisThread()->Deliver(), 1);

    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].Number, 74u);
    EXPECT_EQ(ReadMessageCheck(received[0], form.Handle()), 1);
    EXPECT_EQ(ReadMessageCheck(received[0], 5), 0); // what the ignored window itself has sent
    string text;
    ReadMessageString(received[0], text);
    QFile self("/proc/self/cmdline");
    ASSERT_TRUE(self.open(QIODevice::ReadOnly));
    EXPECT_EQ(text, QString::fromUtf8(self.readAll().replace('\0', '\n')).trimmed());
}

TEST_F(AppInstancesTest, OtherMessagesAreNoCommandLine) {
    EXPECT_EQ(ReadMessageCheck({.Number = 1025}, 0), CopyDataNone);
    EXPECT_EQ(ReadMessageCheck({.Number = WM_COPYDATA}, 0), CopyDataNone);
    string text = "former";
    ReadMessageString({.Number = WM_COPYDATA}, text);
    EXPECT_EQ(text, "");
}

TEST_F(AppInstancesTest, KillInstanceEndsAtOnceAndQuietly) {
    EXPECT_EXIT(
        {
            std::atexit([] { ::_exit(3); });
            TAppInstances::KillInstance();
        },
        testing::ExitedWithCode(0), "^$");
}

class RuntimeFolderTest : public TRuntimeFolderTest {
protected:
    RuntimeFolderTest() {
        QDir().mkpath(Path("session"));
        QDir().mkpath(Path("user"));
        QFile(Path("file")).open(QIODevice::WriteOnly);
        QFile::link(Path("session"), Path("link"));
    }
};

TEST_F(RuntimeFolderTest, TakesTheFirstPlaceThatIsAFolderOfThisUser) {
    const QString missing = Path("missing");
    const QString session = Path("session");
    const QString user = Path("user");
    const QString fallback = Path("fallback");
    const struct {
        QString Session, PerUser, Found;
    } cases[] = {
        {session, user, session}, {session + "/", user, session},
        {"", user, user},         {"session", user, user},
        {missing, user, user},    {Path("file"), user, user},
        {missing, "", fallback},  {Path("link"), user, Path("link")},
    };
    for (const auto& c : cases)
        EXPECT_EQ(FindRuntimeFolder({c.Session, c.PerUser, fallback}), c.Found) << c.Session.toStdString();
}

TEST_F(RuntimeFolderTest, TheFallbackIsPrivateAndNobodyElses) {
    const auto modeOf = [](const QString& path) {
        struct stat info {};
        ::lstat(path.toUtf8().constData(), &info);
        return info.st_mode & 07777;
    };
    EXPECT_EQ(FindRuntimeFolder({"", "", Path("made")}), Path("made"));
    EXPECT_EQ(modeOf(Path("made")), 0700u);
    ::chmod(Path("made").toUtf8().constData(), 0755);
    EXPECT_EQ(FindRuntimeFolder({"", "", Path("made")}), Path("made"));
    EXPECT_EQ(modeOf(Path("made")), 0700u);
    for (const char* trap : {"link", "file", "missing/below"})
        EXPECT_THROW((void)FindRuntimeFolder({"", "", Path(trap)}), Exception) << trap;
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(Path("user").toUtf8().constData(), 65534, 65534), 0);
        EXPECT_THROW((void)FindRuntimeFolder({"", "", Path("user")}), Exception);
    }
}

} // namespace
