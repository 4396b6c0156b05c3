// A file's way by renames: names that are taken, sources that change meanwhile, file systems that can do
// less, calls that fail.
#include "base/SourceFile.h"
#include "base/Exceptions.h"
#include "base/PartFile.h"
#include "testing/DeadToken.h"
#include "testing/Failing.h"
#include "testing/Workspace.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

class SourceFile : public testing::Test {
protected:
    using TClaim = TSourceFile::TClaim;

    SourceFile() {
        QDir().mkpath(FWorkspace.Path("in/process"));
        FHome = TFolder::Open(FWorkspace.Path("in"));
        FProcess = TFolder::OpenBelow(FHome, "process");
    }
    /// Opens a new file, lets something happen, claims it and, where that is possible, settles it.
    TClaim Way(const QByteArray& contents, const std::function<void(const string&)>& event = {}) {
        const string path = FWorkspace.Write("in/a.pdf", contents);
        TClaimFolder claims(FProcess);
        TClaimFolder nearby(FHome);
        TSourceFile source(FHome, "a.pdf");
        if (event)
            event(path);
        const TClaim claim = source.Claim(claims, nearby);
        if (claim == TClaim::Claimed) {
            source.PrepareSettling(FProcess);
            source.Settle(FProcess);
        }
        return claim;
    }
    [[nodiscard]] string Tree() const {
        return FWorkspace.Names("in").join(u' ') + " | " + FWorkspace.Names("in/process").join(u' ');
    }

    TWorkspace FWorkspace;
    TFolderPtr FHome;
    TFolderPtr FProcess;
};

TEST_F(SourceFile, KeepsItsInodeAndNeverReplaces) {
    const string path = FWorkspace.Write("in/a (2).pdf", "new");
    FWorkspace.Write("in/process/a (2).pdf", "1");
    FWorkspace.Write("in/process/a (2) (1).pdf", "2"); // what the rule answers for the first one
    struct stat before {};
    struct stat after {};
    ASSERT_EQ(::stat(path.toUtf8(), &before), 0);
    const int writer = ::open(path.toUtf8(), O_WRONLY | O_APPEND);
    {
        TSourceFile source(FHome, "a (2).pdf");
        TClaimFolder claims(FProcess);
        TClaimFolder nearby(FHome);
        ASSERT_EQ(source.Claim(claims, nearby), TClaim::Claimed);
        EXPECT_EQ(source.Settle(FProcess), "a (2) (1) (1).pdf");
    }
    EXPECT_EQ(::write(writer, " and late", 9), 9);
    ::close(writer);
    ASSERT_EQ(::stat(FWorkspace.Path("in/process/a (2) (1) (1).pdf").toUtf8(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(FWorkspace.Read("in/process/a (2) (1) (1).pdf"), "new and late") << "nothing is ever unlinked";
    EXPECT_EQ(Tree(), "process | a (2) (1) (1).pdf a (2) (1).pdf a (2).pdf") << "the claim folder went";
}

TEST_F(SourceFile, WhatHappensToItMeanwhileIsNoticed) {
    const auto append = [](const string& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(" and more");
    };
    EXPECT_EQ(Way("first", append), TClaim::Changed);
    EXPECT_EQ(FWorkspace.Read("in/a.pdf"), "first and more");
    const auto replace = [this](const string& path) {
        ::rename(FWorkspace.Write("in/b.pdf", "second").toUtf8(), path.toUtf8());
    };
    EXPECT_EQ(Way("first", replace), TClaim::Changed);
    EXPECT_EQ(FWorkspace.Read("in/a.pdf"), "second");
    const auto link = [this](const string& path) {
        QFile::remove(path);
        QFile::link(FWorkspace.Path("in/process"), path);
    };
    EXPECT_EQ(Way("first", link), TClaim::Changed);
    QFile::remove(FWorkspace.Path("in/a.pdf"));
    EXPECT_EQ(Way("first", [](const string& path) { QFile::remove(path); }), TClaim::Gone);
    EXPECT_EQ(Tree(), "process | ");
}

TEST_F(SourceFile, OnlyFilesAreOpened) {
    ASSERT_EQ(::mkfifo(FWorkspace.Path("in/fifo.pdf").toUtf8(), 0600), 0);
    FWorkspace.Write("secret", "x");
    QFile::link(FWorkspace.Path("secret"), FWorkspace.Path("in/link.pdf"));
    for (const char* name : {"fifo.pdf", "link.pdf", "process", "none.pdf"})
        EXPECT_THROW(TSourceFile(FHome, name), EFileError) << name;
}

struct TPoorFileSystem {
    const char* Name;
    std::vector<std::string> Missing;
    int Error;
};

void PrintTo(const TPoorFileSystem& system, std::ostream* out) {
    *out << system.Name;
}

class PoorFileSystem : public SourceFile, public testing::WithParamInterface<TPoorFileSystem> {};

TEST_P(PoorFileSystem, TheWayIsTheSame) {
    const TFailing failing(GetParam().Missing, GetParam().Error);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Way("contents " + QByteArray::number(i)), TClaim::Claimed);
    EXPECT_GT(TFailing::Made(), 0);
    EXPECT_EQ(Tree(), "process | a (1).pdf a (2).pdf a.pdf");
    TPartFile part(FWorkspace.Path("in/process/a.pdf"));
    part.Write("x", 1);
    PublishFree(part);
    EXPECT_EQ(part.FinalPath(), FWorkspace.Path("in/process/a (3).pdf"));
    EXPECT_EQ(FWorkspace.Read("in/process/a.pdf") + FWorkspace.Read("in/process/a (2).pdf"),
              "contents 0contents 2");
}

INSTANTIATE_TEST_SUITE_P(
    , PoorFileSystem,
    testing::Values(TPoorFileSystem{"NoExclusiveRename", {"settle", "publish", "give back"}, EINVAL},
                    TPoorFileSystem{
                        "NeitherThatNorLinks", {"settle", "publish", "give back", "link"}, ENOTSUP},
                    TPoorFileSystem{"NoLocks", {"flock"}, ENOLCK}),
    [](const auto& param) { return param.param.Name; });

/// The folder of the claims lies on another file system: renames into it and out of it answer EXDEV.
TEST_F(SourceFile, IsCopiedOnlyWhereFileSystemsMeet) {
    FWorkspace.Write("in/a.pdf", "contents");
    ::chmod(FWorkspace.Path("in/a.pdf").toUtf8(), 0640);
    const auto crossing = [](const char* call) {
        static int claims = 0;
        return (std::string(call) == "claim" && claims++ % 2 == 0) || std::string(call) == "settle" ? EXDEV
                                                                                                    : 0;
    };
    SetFaultHook(crossing);
    TSourceFile source(FHome, "a.pdf");
    {
        TClaimFolder claims(FProcess);
        TClaimFolder nearby(FHome);
        EXPECT_EQ(source.Claim(claims, nearby), TClaim::Claimed);
        source.PrepareSettling(FProcess);
        EXPECT_EQ(source.Settle(FProcess), "a.pdf");
    }
    SetFaultHook(nullptr);
    EXPECT_EQ(Tree(), "process | a.pdf");
    EXPECT_EQ(FWorkspace.Read("in/process/a.pdf"), "contents");
    EXPECT_EQ(QFile::permissions(FWorkspace.Path("in/process/a.pdf")) & QFile::WriteGroup, 0);
}

TEST_F(SourceFile, AFailingCallLeavesItUnderItsName) {
    for (const char* call : {"mkdir claims", "claim", "settle"}) {
        SCOPED_TRACE(call);
        const TFailing failing(call, ENOSPC);
        EXPECT_THROW(Way("contents"), EFileError);
        EXPECT_EQ(Tree(), "a.pdf process | ");
    }
}

TEST_F(SourceFile, SweepGivesBackWhatDeadRunsTookAndLeavesTheLiving) {
    const char dead[] = "in/process/.morvane-claim-1.00000-00000-00000-1-1/";
    FWorkspace.Write(string(dead) + "a.pdf", "taken");
    FWorkspace.Write("in/a.pdf", "newcomer");
    TClaimFolder alive(FProcess);
    FWorkspace.Write("in/b.pdf", "b");
    TSourceFile source(FHome, "b.pdf");
    TClaimFolder nearby(FHome);
    ASSERT_EQ(source.Claim(alive, nearby), TClaim::Claimed);
    EXPECT_EQ(SweepClaims(FProcess, FHome), QStringList()) << "of another host, and touched just now";
    ::rename(FWorkspace.Path(dead).chopped(1).toUtf8(),
             FWorkspace.Path("in/process/.morvane-claim-1." + DeadToken()).toUtf8());
    EXPECT_EQ(SweepClaims(FProcess, FHome), QStringList("a (1).pdf"));
    EXPECT_EQ(FWorkspace.Read("in/a.pdf") + FWorkspace.Read("in/a (1).pdf"), "newcomertaken");
    source.Unclaim();
    EXPECT_EQ(FWorkspace.Read("in/b.pdf"), "b");
}

TEST(Folder, SubfoldersTakeModeAndGroupAndLinksOnlyOfTheirOwn) {
    const TWorkspace workspace;
    QDir().mkpath(workspace.Path("in"));
    ASSERT_EQ(::chmod(workspace.Path("in").toUtf8(), 03775), 0);
    const TFolderPtr home = TFolder::Open(workspace.Path("in"));
    struct stat made {};
    ASSERT_EQ(::fstat(TFolder::OpenBelow(home, "output")->Descriptor(), &made), 0);
    EXPECT_EQ(made.st_mode & 07777, 02775U);
    QDir().mkpath(workspace.Path("elsewhere"));
    QFile::link(workspace.Path("elsewhere"), workspace.Path("in/process"));
    EXPECT_TRUE(TFolder::OpenBelow(home, "process")->IsSameAs(*TFolder::Open(workspace.Path("elsewhere"))));
    if (::geteuid() == 0) { // only then can a link be given to somebody else
        ASSERT_EQ(::lchown(workspace.Path("in/process").toUtf8(), 65534, 65534), 0);
        EXPECT_THROW((void)TFolder::OpenBelow(home, "process"), EFileError);
    }
    workspace.Write("in/Error", "a file");
    EXPECT_THROW((void)TFolder::OpenBelow(home, "Error"), EFileError);
}

TEST(PartFile, ReplacesFilesAndNothingElse) {
    const TWorkspace workspace;
    workspace.Write("file", "old");
    ::chmod(workspace.Path("file").toUtf8(), 0640);
    QDir().mkpath(workspace.Path("folder"));
    ASSERT_EQ(::mkfifo(workspace.Path("fifo").toUtf8(), 0600), 0);
    const auto write = [&](const char* name) {
        TPartFile file(workspace.Path(name));
        file.Write("new", 3);
        file.TakeModeOf(workspace.Path(name));
        file.PublishReplacing();
    };
    EXPECT_THROW(write("folder"), EFileError);
    EXPECT_THROW(write("fifo"), EFileError);
    EXPECT_THROW(write("none/file"), EFileError);
    write("file");
    EXPECT_EQ(workspace.Read("file"), "new");
    struct stat info {};
    ASSERT_EQ(::stat(workspace.Path("file").toUtf8(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    EXPECT_EQ(workspace.Names(), QStringList({"file", "folder"})) << "a temporary was left";
}

TEST(PartFile, NobodyElseReadsWhatIsNotPublished) {
    const TWorkspace workspace;
    const TPartFile file(workspace.Path("result"));
    struct stat info {};
    ASSERT_EQ(::fstat(file.Descriptor(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600U);
}

TEST(PartFile, FileSystemsThatCannotSendFilesAreRead) {
    const TWorkspace workspace;
    const TFailing failing("sendfile", EINVAL);
    const QByteArray contents(700'001, 'y'); // more than one buffer
    const int source = ::open(workspace.Write("a.pdf", contents).toUtf8(), O_RDONLY);
    TPartFile copy(workspace.Path("copy"));
    copy.WriteAllOf(source);
    ::close(source);
    copy.PublishReplacing();
    EXPECT_EQ(workspace.Read("copy"), contents);
}

TEST(PartFile, SweepTakesTheLeftoversOfTheDeadOnly) {
    const TWorkspace workspace;
    workspace.Write(".morvane-abc123.part", "left by an earlier version");
    workspace.Write(".morvane-abc123-" + DeadToken() + ".part", "left by a dead run");
    workspace.Write(".morvane-abc1234.part", "not ours: too long a name");
    workspace.Write(".morvane-abc123-00000-00000-00000-1-1.part", "of another host, and young");
    TPartFile alive(workspace.Path("result"));
    alive.Write("half", 4);
    for (const int locks : {0, ENOLCK}) {
        const TFailing failing("flock", locks);
        SweepPartFiles(*TFolder::Open(workspace.Path()));
        EXPECT_EQ(workspace.Names().size(), 3) << workspace.Names().join(u' ').toStdString();
    }
    alive.PublishReplacing();
    EXPECT_EQ(workspace.Read("result"), "half");
}
