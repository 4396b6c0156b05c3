// Copies and moves that lose nothing: names that are taken, sources that change meanwhile, calls that fail.
#include "base/FileCopy.h"
#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/PartFile.h"
#include "testing/Workspace.h"

#include <cerrno>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string FailingCall;
int FailingError = 0;
int FailNamed(const char* call) {
    return FailingCall == call ? FailingError : 0;
}

/// Lets one file-system call fail while it lives.
struct TFailing {
    TFailing(const char* call, int error) {
        FailingCall = call;
        FailingError = error;
        SetFaultHook(FailNamed);
    }
    ~TFailing() { SetFaultHook(nullptr); }
};

} // namespace

TEST(FileCopy, CopyReplacesAndTakesContentsAndMode) {
    const TWorkspace workspace;
    const string source = workspace.Write("source", QByteArray(300'000, 'x'));
    ::chmod(source.toUtf8(), 0640);
    workspace.Write("dest", "old");
    CopyFileContents(source, workspace.Path("dest"));
    EXPECT_EQ(workspace.Read("dest"), QByteArray(300'000, 'x'));
    struct stat info {};
    ASSERT_EQ(::stat(workspace.Path("dest").toUtf8(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    EXPECT_EQ(workspace.Names(), QStringList({"dest", "source"})) << "a temporary was left";
}

TEST(FileCopy, MoveAsksAgainUntilTheNameIsFree) {
    const TWorkspace workspace;
    workspace.Write("process/a (2).pdf", "1");
    workspace.Write("process/a (2) (1).pdf", "2"); // what the rule answers for the first one
    TSourceFile source(workspace.Write("a (2).pdf", "new"));
    source.MoveTo(workspace.Path("process/a (2).pdf"));
    EXPECT_EQ(workspace.Names("process"), QStringList({"a (2) (1) (1).pdf", "a (2) (1).pdf", "a (2).pdf"}));
    EXPECT_EQ(workspace.Read("process/a (2).pdf") + workspace.Read("process/a (2) (1).pdf") +
                  workspace.Read("process/a (2) (1) (1).pdf"),
              "12new");
    EXPECT_FALSE(workspace.Has("a (2).pdf"));
}

TEST(FileCopy, LongestNamesWork) {
    const TWorkspace workspace;
    const string name = string(251, u'n') + ".pdf";
    TSourceFile source(workspace.Write(name, "x"));
    QDir().mkpath(workspace.Path("process"));
    source.MoveTo(workspace.Path("process/" + name));
    EXPECT_EQ(workspace.Read("process/" + name), "x");
}

TEST(FileCopy, WhatHappensToTheNameMeanwhileLosesNothing) {
    const TWorkspace workspace;
    const auto moveAfter = [&](const std::function<void(const string&)>& event) {
        const string path = workspace.Write("a.pdf", "first");
        TSourceFile source(path);
        event(path);
        const bool unchanged = source.IsUnchanged();
        source.MoveTo(workspace.Path("moved"));
        return unchanged;
    };
    // Replaced by another file: what was opened is moved, the newcomer stays for its own turn.
    EXPECT_FALSE(moveAfter(
        [&](const string& path) { ::rename(workspace.Write("b.pdf", "second").toUtf8(), path.toUtf8()); }));
    EXPECT_EQ(workspace.Read("a.pdf"), "second");
    EXPECT_EQ(workspace.Read("moved"), "first");
    QFile::remove(workspace.Path("moved"));
    // Written to: nobody knows whether the writer is through, so it stays.
    EXPECT_FALSE(moveAfter([](const string& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(" and more");
    }));
    EXPECT_EQ(workspace.Read("a.pdf"), "first and more");
    EXPECT_FALSE(workspace.Has("moved"));
    // Renamed: it stays under its new name.
    EXPECT_FALSE(moveAfter([&](const string& path) { QFile::rename(path, workspace.Path("c.pdf")); }));
    EXPECT_EQ(workspace.Read("c.pdf"), "first");
    EXPECT_FALSE(workspace.Has("moved"));
    // Deleted: the contents that were opened are still there to be moved.
    EXPECT_FALSE(moveAfter([](const string& path) { QFile::remove(path); }));
    EXPECT_EQ(workspace.Read("moved"), "first");
}

TEST(FileCopy, AFailingCallLeavesTheSourceAndNoTemporary) {
    for (const char* call : {"open source", "create part", "sendfile", "fsync", "rename new"}) {
        SCOPED_TRACE(call);
        const TWorkspace workspace;
        const string path = workspace.Write("a.pdf", "contents");
        const TFailing failing(call, ENOSPC);
        EXPECT_THROW(
            {
                TSourceFile source(path);
                source.MoveTo(workspace.Path("moved"));
            },
            EFileError);
        EXPECT_EQ(workspace.Read("a.pdf"), "contents");
        EXPECT_EQ(workspace.Names(), QStringList("a.pdf"));
    }
}

TEST(FileCopy, FileSystemsWithoutTheExclusiveRenameUseALink) {
    const TWorkspace workspace;
    workspace.Write("moved", "there before");
    const TFailing failing("rename new", EINVAL);
    TSourceFile source(workspace.Write("a.pdf", "contents"));
    source.MoveTo(workspace.Path("moved"));
    EXPECT_EQ(workspace.Read("moved"), "there before");
    EXPECT_EQ(workspace.Read("moved (1).pdf"), "contents");
    EXPECT_EQ(workspace.Names(), QStringList({"moved", "moved (1).pdf"}));
}

TEST(FileCopy, FileSystemsThatCannotSendFilesAreRead) {
    const TWorkspace workspace;
    const TFailing failing("sendfile", EINVAL);
    const QByteArray contents(700'001, 'y'); // more than one buffer
    CopyFileContents(workspace.Write("a.pdf", contents), workspace.Path("copy"));
    EXPECT_EQ(workspace.Read("copy"), contents);
}

TEST(FileCopy, ASourceThatCannotBeDeletedStays) {
    const TWorkspace workspace;
    const TFailing failing("unlink source", EPERM);
    TSourceFile source(workspace.Write("a.pdf", "contents"));
    source.MoveTo(workspace.Path("moved"));
    EXPECT_EQ(workspace.Read("a.pdf"), "contents");
    EXPECT_EQ(workspace.Read("moved"), "contents");
}

TEST(PartFile, SweepTakesTheLeftoversOfTheDeadOnly) {
    const TWorkspace workspace;
    workspace.Write(".morvane-abc123.part", "left by a dead run");
    workspace.Write(".morvane-abc1234.part", "not ours: too long a name");
    TPartFile alive(workspace.Path("result"));
    alive.Write("half", 4);
    SweepPartFiles(workspace.Path());
    const QStringList names = workspace.Names();
    EXPECT_EQ(names.size(), 2) << names.join(u' ').toStdString();
    EXPECT_FALSE(names.contains(".morvane-abc123.part"));
    EXPECT_TRUE(names.contains(".morvane-abc1234.part"));
    alive.PublishReplacing();
    EXPECT_EQ(workspace.Read("result"), "half");
}
