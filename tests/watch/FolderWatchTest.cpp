#include "watch/FolderWatch.h"
#include "base/Exceptions.h"
#include "platform/ChangeNotification.h"
#include "testing/Delivery.h"
#include "testing/Raised.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <thread>

namespace {

class FolderWatchTest : public testing::Test {
protected:
    FolderWatchTest() {
        for (const char* folder : {"one/sub", "two"})
            QDir(FBase.path()).mkpath(folder);
        FWatch.SetNotifyFilters(TFolderWatch::nfLastWrite);
        FWatch.SetDirectory(Path("one"));
        FWatch.SetOnChange([this](TFolderWatch& sender) {
            EXPECT_EQ(&sender, &FWatch);
            EXPECT_EQ(std::this_thread::get_id(), FMaker);
            ++FChanges;
        });
    }
    QString Path(const QString& name) const { return FBase.filePath(name); }
    void Write(const QString& name) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("text");
    }
    /// Tried again where notice comes, since that of an earlier change may be late on a busy machine.
    bool IsSilent(const std::function<void(int attempt)>& change) {
        for (int attempt = 0; attempt < 20; ++attempt) {
            FChanges = 0;
            change(attempt);
            DeliverFor(60);
            if (FChanges == 0)
                return true;
        }
        return false;
    }

    /// A new watch takes a moment to open, and nothing tells when it has: changes are made until one is seen.
    void AwaitWatch(const QString& folder) {
        int probes = 0;
        do {
            FChanges = 0;
            Write(folder + "/probe");
            QDir(Path(folder)).mkdir(QString("probe%1").arg(++probes));
            DeliverFor(60);
        } while (FChanges == 0 && probes < 200);
        ASSERT_GT(FChanges, 0) << folder.toStdString();
        DeliverFor(60);
    }

    QTemporaryDir FBase;
    const std::thread::id FMaker = std::this_thread::get_id();
    int FChanges = 0;
    TFolderWatch FWatch{nullptr};
};

TEST_F(FolderWatchTest, FiltersAreTheseFlagsOfThePlatform) {
    const Cardinal flags[] = {1, 2, 4, 8, 16, 256};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(ChangeFiltersOf(TFolderWatch::TNotifyFilters(1 << i)), flags[i]);
    EXPECT_EQ(ChangeFiltersOf(TFolderWatch::TNotifyFilters(63)), 287u);
    EXPECT_EQ(ChangeFiltersOf({}), 0u);
}

TEST_F(FolderWatchTest, TheDirectoryChangesUnderTheRunningThread) {
    FWatch.SetActive(/*active=*/true);
    const auto* thread = FWatch.Thread();
    ASSERT_NE(thread, nullptr);
    for (const char* same : {"one", "one/"})
        FWatch.SetDirectory(Path(same));
    AwaitWatch("one");
    FWatch.SetDirectory(Path("two"));
    EXPECT_EQ(FWatch.Directory(), Path("two") + "/");
    EXPECT_EQ(FWatch.Thread(), thread);
    AwaitWatch("two");
    EXPECT_TRUE(IsSilent([&](int) { Write("one/file"); }));
}

TEST_F(FolderWatchTest, AnotherFilterOrAnotherTreeTakesANewThread) {
    FWatch.SetActive(/*active=*/true);
    AwaitWatch("one");
    EXPECT_TRUE(IsSilent([&](int) { Write("one/sub/file"); }));
    FWatch.SetWatchSubDirs(/*watchSubDirs=*/true);
    EXPECT_TRUE(FWatch.Active());
    AwaitWatch("one/sub");
    FWatch.SetNotifyFilters(TFolderWatch::nfDirname);
    AwaitWatch("one");
    EXPECT_TRUE(IsSilent([&](int) { Write("one/file"); }));
    FWatch.SetActive(/*active=*/false);
    EXPECT_EQ(FWatch.Thread(), nullptr);
    FWatch.SetWatchSubDirs(/*watchSubDirs=*/false); // starts nothing
    EXPECT_FALSE(FWatch.Active());
    EXPECT_TRUE(IsSilent([&](int attempt) { QDir(Path("one")).mkdir(QString("newer%1").arg(attempt)); }));
}

TEST_F(FolderWatchTest, AMissingDirectoryRaisesAndChangesNothing) {
    const QString missing = Path("missing");
    EXPECT_EQ(RaisedBy([&] { FWatch.SetDirectory(missing); }), "Invalid Directory: " + missing + "/");
    EXPECT_EQ(FWatch.Directory(), Path("one") + "/");
    FWatch.SetDirectory(Path("two"));
    QDir(Path("two")).removeRecursively();
    EXPECT_EQ(RaisedBy([&] { FWatch.SetActive(/*active=*/true); }),
              "Invalid Directory: " + Path("two") + "/");
    EXPECT_FALSE(FWatch.Active());
    EXPECT_EQ(FWatch.Thread(), nullptr);
    FWatch.SetDirectory(Path("one"));
    FWatch.SetActive(/*active=*/true);
    FWatch.SetDirectory("");
    EXPECT_FALSE(FWatch.Active());
    EXPECT_EQ(FWatch.Directory(), "");
    EXPECT_EQ(RaisedBy([&] { FWatch.SetActive(/*active=*/true); }), "Invalid Directory: ");
}

TEST_F(FolderWatchTest, TheHandlerMayStopOrFreeTheWatch) {
    FWatch.SetActive(/*active=*/true);
    FWatch.SetOnChange([this](TFolderWatch& sender) {
        sender.SetActive(/*active=*/false);
        ++FChanges;
    });
    auto owner = std::make_unique<TComponent>(nullptr);
    auto* owned = new TFolderWatch(owner.get());
    owned->SetDirectory(Path("two"));
    owned->SetOnChange([&](TFolderWatch&) {
        owner.reset();
        ++FChanges;
    });
    owned->SetActive(/*active=*/true);
    AwaitWatch("one");
    EXPECT_FALSE(FWatch.Active());
    AwaitWatch("two");
    EXPECT_EQ(owner, nullptr);
}

} // namespace
