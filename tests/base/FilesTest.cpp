// Names and lists of files, the busy-file test, digests, settings.
#include "base/BusyFile.h"
#include "base/Exceptions.h"
#include "base/Folder.h"
#include "base/FolderListing.h"
#include "base/Md5.h"
#include "base/Paths.h"
#include "base/Settings.h"
#include "testing/Failing.h"
#include "testing/Workspace.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

TEST(FolderListing, MaskKnowsStarAndQuestionMarkOnly) {
    struct TCase {
        string Name;
        string Mask;
        bool Fits;
    };
    for (const TCase& row : {TCase{"a.PDF", "*.pdf", true}, TCase{".pdf", "*.pdf", true},
                             TCase{"a.pdf.txt", "*.pdf", false}, TCase{"abxb.pdf", "a*b.pdf", true},
                             TCase{"ab.pdf", "a?.pdf", true}, TCase{"a.pdf", "a?.pdf", false},
                             TCase{"b.pdf", "[ab].pdf", false}, TCase{"[ab].pdf", "[ab]*.pdf", true},
                             TCase{"ÄÖ.pdf", "äö*.pdf", true}, TCase{"aaa", "*a*a*a*a", false}})
        EXPECT_EQ(MatchesMask(row.Name, row.Mask), row.Fits)
            << row.Name.toStdString() << " as " << row.Mask.toStdString();
}

TEST(FolderListing, NaturalOrder) {
    const QStringList sorted{"a",       "a1.pdf",   "a2.pdf", "A2b.pdf", "a02b.pdf",
                             "a10.pdf", "a10.pdfx", "b1",     "я"};
    QStringList shuffled(sorted.rbegin(), sorted.rend());
    std::sort(shuffled.begin(), shuffled.end(), NaturalLess);
    EXPECT_EQ(shuffled.at(0), "a");
    EXPECT_EQ(shuffled.indexOf("a2.pdf"), 2);
    EXPECT_LT(shuffled.indexOf("a02b.pdf"), shuffled.indexOf("a10.pdf"));
    EXPECT_EQ(shuffled.last(), "я");
    for (const string& a : sorted)
        for (const string& b : sorted)
            EXPECT_FALSE(NaturalLess(a, b) && NaturalLess(b, a)) << a.toStdString() << " " << b.toStdString();
}

TEST(FolderListing, ListsPlainFilesOnly) {
    const TWorkspace workspace;
    for (const char* name : {"b10.pdf", "b9.PDF", ".hidden.pdf", "c.txt"})
        workspace.Write(name, "x");
    QDir().mkpath(workspace.Path("folder.pdf"));
    QFile::link(workspace.Path("b10.pdf"), workspace.Path("link.pdf"));
    ASSERT_EQ(::mkfifo(workspace.Path("pipe.pdf").toUtf8(), 0600), 0);
    const QByteArray invalid = workspace.Path().toUtf8() + "bad\xff.pdf";
    ::close(::open(invalid.constData(), O_CREAT | O_WRONLY, 0600));
    int unreadable = 0;
    EXPECT_EQ(ListFiles(workspace.Path(), "*.pdf", &unreadable), QStringList({"b9.PDF", "b10.pdf"}));
    EXPECT_EQ(unreadable, 1);
    ::unlink(invalid.constData()); // the workspace's own removal can't name it
    EXPECT_THROW((void)ListFiles(workspace.Path("none"), "*"), EFileError);
}

class BusyFile : public testing::Test {
protected:
    static constexpr qint64 Second = 1'000'000'000;
    static qint64 Now() {
        struct timespec now {};
        ::clock_gettime(CLOCK_REALTIME, &now);
        return qint64(now.tv_sec) * Second + now.tv_nsec;
    }
    [[nodiscard]] bool IsReady(const char* name, qint64 now, const TQuietTime& quiet = {}) {
        return FTest.IsReady(*FFolder, name, now, quiet);
    }
    TWorkspace FWorkspace;
    TFolderPtr FFolder = TFolder::Open(FWorkspace.Path());
    TBusyFileTest FTest;
};

TEST_F(BusyFile, WaitsUntilAFileIsQuiet) {
    FWorkspace.Write("full.pdf", "x");
    FWorkspace.Write("empty.pdf", "");
    const qint64 now = Now();
    EXPECT_FALSE(IsReady("full.pdf", now));
    EXPECT_TRUE(IsReady("full.pdf", now + 4 * Second));
    EXPECT_FALSE(IsReady("full.pdf", now + 4 * Second, {.Leased = 10, .Unanswered = 10}));
    EXPECT_FALSE(IsReady("empty.pdf", now + 3599 * Second)) << "a placeholder";
    EXPECT_TRUE(IsReady("empty.pdf", now + 3601 * Second));
    EXPECT_FALSE(IsReady("none.pdf", now));
}

TEST_F(BusyFile, WaitsForTheWriter) {
    const string path = FWorkspace.Write("a.pdf", "x");
    const int writer = ::open(path.toUtf8(), O_WRONLY);
    const int reader = ::open(path.toUtf8(), O_RDONLY);
    const bool known = FTest.IsHeld(*FFolder, reader); // not every file system can tell
    EXPECT_NE(IsReady("a.pdf", Now() + 60 * Second), known);
    ::close(writer);
    EXPECT_FALSE(FTest.IsHeld(*FFolder, reader));
    ::close(reader);
    EXPECT_TRUE(IsReady("a.pdf", Now() + 60 * Second));
}

TEST_F(BusyFile, AChangeTimeInTheFutureCountsOnceItStandsStill) {
    FWorkspace.Write("a.pdf", "x");
    const qint64 before = Now() - 3600 * Second; // the clock was set back after the file came
    EXPECT_FALSE(IsReady("a.pdf", before));
    EXPECT_TRUE(IsReady("a.pdf", before + Second));
}

/// What file systems answer when they are asked for a lease: on some, everything is refused although nobody
/// writes, and some files can't be asked about at all.
TEST_F(BusyFile, WhereLeasesSayNothingTheQuietTimeDecides) {
    FWorkspace.Write("a.pdf", "x");
    for (const int answer : {EAGAIN, EACCES, EINVAL}) {
        SCOPED_TRACE(std::strerror(answer));
        const TFailing failing({"lease", "probe lease"}, answer);
        TBusyFileTest test;
        EXPECT_FALSE(test.IsReady(*FFolder, "a.pdf", Now() + 2 * Second));
        EXPECT_TRUE(test.IsReady(*FFolder, "a.pdf", Now() + 4 * Second));
    }
    EXPECT_EQ(FWorkspace.Names(), QStringList("a.pdf")) << "a probe was left";
}

TEST(Md5, OfAFile) {
    const TWorkspace workspace;
    const auto digest = TMD5Hash::MD5File(workspace.Write("f", "abc"));
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(digest.data()), 16).toHex(),
              "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_THROW((void)TMD5Hash::MD5File(workspace.Path("none")), Exception);
}

TEST(Paths, ExpandsReferencesWithinTheRoom) {
    qputenv("MORVANE_TEST_A", "/srv");
    qputenv("MORVANE_TEST_LONG", QByteArray(250, 'x'));
    EXPECT_EQ(ExpandEnvironment("%MORVANE_TEST_A%/in"), "/srv/in");
    EXPECT_EQ(ExpandEnvironment("/plain"), "/plain");
    EXPECT_EQ(ExpandEnvironment("50% %NO_SUCH%MORVANE_TEST_A%"), "50% %NO_SUCH/srv");
    EXPECT_EQ(ExpandEnvironment("%MORVANE_TEST_LONG%12345").size(), 255);
    EXPECT_EQ(ExpandEnvironment("%MORVANE_TEST_LONG%123456"), "");
}

TEST(Paths, Parts) {
    EXPECT_EQ(WithoutExtension("/a.b/c"), "/a.b/c");
    EXPECT_EQ(WithoutExtension("/a.b/c.d.pdf"), "/a.b/c.d");
    EXPECT_EQ(ExtractFilePath("/a/b.pdf") + "|" + ExtractFileName("/a/b.pdf"), "/a/|b.pdf");
    const TWorkspace workspace;
    ForceDirectories(workspace.Path("x/y/z/"));
    EXPECT_TRUE(DirectoryExists(workspace.Path("x/y/z")));
    workspace.Write("file", "");
    EXPECT_THROW(ForceDirectories(workspace.Path("file/below")), EFileError);
}

TEST(Settings, ConfigurationFolderMayHoldACommaAndHasADefault) {
    const TWorkspace workspace;
    qputenv("XDG_CONFIG_HOME", workspace.Path("config").toUtf8());
    EXPECT_EQ(GetEditorSettings().ConfigurationFolder, "%HOME%/.config/morvane/watched-folders");
    workspace.Write("config/morvane/settings.ini", "[General]\nConfigurationFolder=/srv/a,b/ä/\n");
    EXPECT_EQ(GetEditorSettings().ConfigurationFolder, "/srv/a,b/ä");
}
