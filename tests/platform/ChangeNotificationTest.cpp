#include "platform/ChangeNotification.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

namespace {

constexpr Cardinal AllFilters = 1 | 2 | 4 | 8 | 16 | 256;

/// A folder with "file" (4 bytes), "sub/" and "sub/file", and an empty "aside/" beside it.
class ChangeNotificationTest : public testing::Test {
protected:
    ChangeNotificationTest() {
        QDir(FBase.path()).mkpath("watched/sub");
        QDir(FBase.path()).mkpath("aside");
        Write("file");
        Write("sub/file");
        Write("../aside/file");
    }

    QString Path(const QString& name) const { return FBase.filePath("watched/" + name); }
    QByteArray Bytes(const QString& name) const { return Path(name).toUtf8(); }
    void Write(const QString& name) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("text");
    }
    void Rename(const QString& from, const QString& to) const {
        ASSERT_EQ(::rename(Bytes(from).constData(), Bytes(to).constData()), 0);
    }

    std::unique_ptr<TChangeNotification> Watch(Cardinal filters, TSubtree subtree = TSubtree::No) const {
        return FindFirstChangeNotification(Path(""), subtree, filters);
    }
    /// inotify queues an event before the call that caused it returns, so no wait is needed.
    static bool Signalled(TChangeNotification& notification) { return WaitForSingleObject(notification, 0); }

    QTemporaryDir FBase;
};

TEST_F(ChangeNotificationTest, EachFilterReportsItsKindOfChange) {
    struct TCase {
        const char* What;
        std::function<void()> Change;
        Cardinal Reported; ///< by these filters and no others
    };
    const TCase cases[] = {
        {"make an empty file by link", [&] { ::link(Bytes("file").constData(), Bytes("new").constData()); },
         1},
        {"remove a file", [&] { ::unlink(Bytes("new").constData()); }, 1},
        {"rename a file", [&] { Rename("file", "moved"); }, 1 | 16},
        {"move a file away", [&] { Rename("moved", "../aside/moved"); }, 1},
        {"replace a file by rename", [&] { Rename("../aside/moved", "file"); }, 1 | 16},
        {"make a folder", [&] { ::mkdir(Bytes("folder").constData(), 0700); }, 2},
        {"remove a folder", [&] { ::rmdir(Bytes("folder").constData()); }, 2},
        {"change a mode", [&] { ::chmod(Bytes("file").constData(), 0640); }, 4 | 16 | 256},
        {"set the times", [&] { ::utime(Bytes("file").constData(), nullptr); }, 4 | 16 | 256},
        {"truncate", [&] { ::truncate(Bytes("file").constData(), 1); }, 8 | 16},
        {"write", [&] { Write("file"); }, 8 | 16},
        {"read", [&] { QFile(Path("file")).open(QIODevice::ReadOnly); }, 0},
        {"change the folder's own mode", [&] { ::chmod(Bytes("").constData(), 0750); }, 0},
        {"write below", [&] { Write("sub/file"); }, 0},
        {"make a file below", [&] { Write("sub/new"); }, 0},
    };
    for (const TCase& c : cases) {
        std::vector<std::pair<Cardinal, std::unique_ptr<TChangeNotification>>> watches;
        for (const Cardinal filter : {1, 2, 4, 8, 16, 256})
            watches.emplace_back(filter, Watch(filter));
        c.Change();
        for (const auto& [filter, watch] : watches)
            EXPECT_EQ(Signalled(*watch), (c.Reported & filter) != 0) << c.What << ", filter " << filter;
    }
}

TEST_F(ChangeNotificationTest, StaysSignalledUntilItIsArmedAnew) {
    const auto watch = Watch(16);
    EXPECT_FALSE(Signalled(*watch));
    Write("file");
    EXPECT_TRUE(Signalled(*watch));
    EXPECT_TRUE(Signalled(*watch));
    Write("file"); // between the signal and the arming: counts
    watch->FindNext();
    EXPECT_TRUE(Signalled(*watch));
    watch->FindNext();
    EXPECT_FALSE(Signalled(*watch));
}

TEST_F(ChangeNotificationTest, TheSubtreeFollowsFoldersThatComeAndGo) {
    const auto watch = Watch(16, TSubtree::Yes);
    const auto reports = [&](const char* what, bool expected, const std::function<void()>& change) {
        change();
        EXPECT_EQ(Signalled(*watch), expected) << what;
        watch->FindNext();
        EXPECT_FALSE(Signalled(*watch)) << what << ", left over";
    };
    reports("write below", true, [&] { Write("sub/file"); });
    reports("make a folder", false, [&] { QDir(Path("")).mkpath("new/deep"); });
    reports("write in it", true, [&] { Write("new/deep/file"); });
    reports("rename its parent", true, [&] { Rename("new", "renamed"); });
    reports("write under the new name", true, [&] { Write("renamed/deep/file"); });
    reports("move it away", false, [&] { Rename("renamed", "../aside/renamed"); });
    reports("write where it is now", false, [&] { Write("../aside/renamed/deep/file"); });
    reports("move it in, with a file in it", true, [&] { Rename("../aside/renamed", "back"); });
    reports("write in it again", true, [&] { Write("back/deep/file"); });
    reports("remove it", false, [&] { QDir(Path("back")).removeRecursively(); });
    reports("link to a folder", false, [&] { QFile::link(FBase.filePath("aside"), Path("link")); });
    reports("write behind the link", false, [&] { Write("../aside/file"); });
}

TEST_F(ChangeNotificationTest, AnOverflowOfTheQueueIsAChangeAndLosesNoFolder) {
    QFile limits("/proc/sys/fs/inotify/max_queued_events");
    ASSERT_TRUE(limits.open(QIODevice::ReadOnly));
    const int limit = limits.readAll().trimmed().toInt();
    ASSERT_LT(limit, 1'000'000);
    const auto watch = Watch(2, TSubtree::Yes); // names of folders: what files do is no change
    // Two names by turns, for equal events in a row would be merged.
    for (int i = 0; i <= limit / 2; ++i) {
        Rename("file", "moved");
        Rename("moved", "file");
    }
    ::mkdir(Bytes("lost").constData(), 0700); // its event doesn't fit any more
    EXPECT_TRUE(Signalled(*watch));
    watch->FindNext();
    EXPECT_FALSE(Signalled(*watch));
    ::mkdir(Bytes("lost/below").constData(), 0700);
    EXPECT_TRUE(Signalled(*watch));
}

TEST_F(ChangeNotificationTest, FollowsAFolderThatIsRenamedAndFallsSilentWhenItIsRemoved) {
    const auto watch = Watch(AllFilters & ~3u);
    Rename("../watched", "../elsewhere");
    EXPECT_FALSE(Signalled(*watch));
    QFile(FBase.filePath("elsewhere/new")).open(QIODevice::WriteOnly);
    EXPECT_TRUE(Signalled(*watch));
    watch->FindNext();
    QDir(FBase.filePath("elsewhere")).removeRecursively();
    ::mkdir(Bytes("").constData(), 0700);
    Write("file");
    EXPECT_FALSE(Signalled(*watch));
}

TEST_F(ChangeNotificationTest, AFolderThatCannotBeWatchedIsNull) {
    EXPECT_EQ(FindFirstChangeNotification(Path("none"), TSubtree::No, AllFilters), nullptr);
    EXPECT_EQ(FindFirstChangeNotification(Path("file"), TSubtree::Yes, AllFilters), nullptr);
    EXPECT_EQ(FindFirstChangeNotification({}, TSubtree::No, AllFilters), nullptr);
}

TEST(Waiting, TheFirstOfSeveralWinsAndAnEventLosesItsSignal) {
    TEvent first;
    TEvent second;
    EXPECT_EQ(WaitForMultipleObjects({&first, &second}, 0), WaitTimeout);
    second.Set();
    first.Set();
    first.Set();
    EXPECT_EQ(WaitForMultipleObjects({&first, &second}, WaitForever), 0);
    EXPECT_EQ(WaitForMultipleObjects({&first, &second}, WaitForever), 1);
    EXPECT_FALSE(WaitForSingleObject(first, 20));
}

} // namespace
