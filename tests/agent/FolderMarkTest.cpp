// What agents that share a folder say to each other by the file in it.
#include "agent/FolderMark.h"

#include "base/Exceptions.h"
#include "base/RunToken.h"
#include "testing/Raised.h"
#include "testing/Workspace.h"

#include <QUuid>

#include <sys/stat.h>

namespace {

constexpr qint64 Minute = 60'000;

class FolderMark : public testing::Test {
protected:
    FolderMark() {
        QDir().mkpath(FSpace.Path("in"));
        EXPECT_EQ(::chmod(FSpace.Path("in").toUtf8().constData(), 0770), 0);
        FFolder = TFolder::Open(FSpace.Path("in"));
    }
    void BeatOf(const QByteArray& token, const QByteArray& agent) const {
        FSpace.Write("in/.morvane-folder",
                     QByteArray(FolderKeyOf(FFolder).toLatin1()) + '\n' + token + '\n' + agent + '\n');
    }

    TWorkspace FSpace;
    TFolderPtr FFolder;
    THeartbeat FHeartbeat;
};

TEST_F(FolderMark, GivesAFolderOneKeyForGood) {
    const string key = FolderKeyOf(FFolder);
    EXPECT_FALSE(QUuid(key).isNull());
    EXPECT_EQ(FolderKeyOf(FFolder), key);
    EXPECT_EQ(FHeartbeat.Look(FFolder, "me", 0), "");
    EXPECT_EQ(FolderKeyOf(FFolder), key) << "beats change nothing of it";
    for (const char* text : {"", "no key", "\n\n"}) {
        FSpace.Write("in/.morvane-folder", text);
        EXPECT_THROW((void)FolderKeyOf(FFolder), EFileError) << text;
    }
}

TEST_F(FolderMark, AnotherAgentIsNoticedByItsBeatAndForgottenWithoutOne) {
    const QByteArray elsewhere = "another-host-1-2-3";
    ASSERT_EQ(StateOfRun(elsewhere), TRunState::Unknown);
    BeatOf(elsewhere, "scans@server");
    EXPECT_EQ(FHeartbeat.Look(FFolder, "me", 0), "") << "it may be years old";
    BeatOf(elsewhere, "scans@server");
    EXPECT_FALSE(FHeartbeat.IsDue(Minute / 2));
    EXPECT_EQ(FHeartbeat.Look(FFolder, "me", Minute), "scans@server");
    EXPECT_EQ(FHeartbeat.Look(FFolder, "me", 2 * Minute), "") << "it hasn't come again";
}

TEST_F(FolderMark, AFolderOfOnesOwnHasNone) {
    ASSERT_EQ(::chmod(FFolder->Path().toUtf8().constData(), 0700), 0);
    BeatOf(RunToken() + "0", "other@here");
    EXPECT_EQ(FHeartbeat.Look(FFolder, "me", 0), "");
    EXPECT_TRUE(FSpace.Read("in/.morvane-folder").contains("other")) << "nothing is written";
}

} // namespace
