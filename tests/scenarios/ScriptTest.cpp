// Scripts in the real program: whatever one does, the agent answers and stops.
#include "platform/NamedPipe.h"
#include "scenarios/PlayedAgent.h"
#include "scenarios/RealAgent.h"
#include "testing/SamplePdf.h"

#include <QFileInfo>

#include <cstdio>
#include <sys/resource.h>

namespace {

/// One folder whose list is a script, then a rotation.
class TScriptWorkspace : public TConfiguredWorkspace {
public:
    explicit TScriptWorkspace(QByteArray script) {
        script.replace("DIR", Path().toUtf8());
        Write("c/actions.xml", "<ActionManager><ManagerActions><ActionList><Name>Work</Name><Actions>"
                               "<Action Class=\"TPDFActionJavaScript\"><Javascript><![CDATA[" +
                                   script +
                                   "]]></Javascript></Action><Action Class=\"TPDFActionRotatePages\">"
                                   "<Angle>90</Angle></Action></Actions></ActionList></ManagerActions>"
                                   "</ActionManager>");
    }
};

string CheckReply(const TWorkspace& workspace) {
    qputenv("XDG_RUNTIME_DIR", Narrow(workspace.Path("settings")));
    TNamedPipeClient pipe("morvane_watched_folders");
    pipe.OpenPipe();
    pipe.WritePipe("check");
    const string reply = pipe.Read(60'000);
    qunsetenv("XDG_RUNTIME_DIR");
    return reply;
}

} // namespace

TEST(ScriptScenario, HarmfulScriptsLeaveTheAgentAnsweringAndAbleToStop) {
    for (const char* script : {
             "leak = []; for (var i = 0; i < 1e5; ++i) leak.push({i})",
             "Object.freeze(globalThis)",
             "throw new Error('no')",
             "(function f() { f() })()",
             "var a = []; for (;;) a.push(new Uint8Array(1e6))",
             "var a = []; for (;;) a.push(new TPDFDocument())",
             "for (;;) try { for (;;); } catch (e) {} finally { for (;;); }",
             "(async () => { for (;;) await 0 })()",
             "(async () => { await new Promise(() => {}) })()",
             "CreateProcess('sh -c \"exec sleep 90 >/dev/null 2>&1\"', 0, true)",
             "for (;;) new TPDFDocument().Load('DIR/locked.pdf', '')",
             "ShowMessage('shown'); MessageBox('asked', 4)",
         }) {
        const TScriptWorkspace workspace(QByteArray("CreateProcess('touch \"DIR/began\"', 0, true);\n") +
                                         script);
        MakePdf(workspace.Path("locked.pdf"), 1, {.UserPassword = "secret", .OwnerPassword = "owner"});
        TRealAgent agent(workspace.Path("settings"));
        MakePdf(workspace.Path("in/a.pdf"), 1);
        ASSERT_TRUE(Eventually([&] { return workspace.Has("began"); })) << script;
        ::usleep(300'000);
        EXPECT_EQ(CheckReply(workspace), "OK") << script;
        agent.FProcess.terminate();
        EXPECT_TRUE(agent.FProcess.waitForFinished(60'000)) << script;
        EXPECT_EQ(agent.FProcess.exitStatus(), QProcess::NormalExit) << script;
        EXPECT_EQ(agent.FProcess.exitCode(), 0) << script;
    }
}

TEST(ScriptScenario, FailedScriptIsToldToTheJournalAndTheListGoesOn) {
    const TScriptWorkspace workspace("Document.RotatePages('1', 90);\nDocument.Rotate()");
    TRealAgent agent(workspace.Path("settings"));
    MakePdf(workspace.Path("in/a.pdf"), 2);
    EXPECT_TRUE(Eventually([&] { return workspace.Has("in/process/a.pdf"); }));
    EXPECT_TRUE(RunProgram("pdfinfo", {"-f", "1", "-l", "2", workspace.Path("in/output/a.pdf")})
                    .Out.simplified()
                    .contains("Page 1 size: 595 x 842 pts (A4) Page 1 rot: 180"));
    agent.FProcess.terminate();
    EXPECT_TRUE(agent.FProcess.waitForFinished(60'000));
    const QByteArray journal = agent.FProcess.readAllStandardError();
    EXPECT_TRUE(journal.contains("PDFActions.Inline:2:10: TypeError: Document.Rotate is not a function"))
        << journal.toStdString();
}

/// A worker's limits are its own.
TEST(ScriptScenario, ProgramsOfScriptsHaveAllTheMemoryThatTheAgentMayHave) {
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_DATA, &limit), 0);
    const QByteArray kilobytes =
        limit.rlim_cur == RLIM_INFINITY ? "unlimited" : QByteArray::number(quint64(limit.rlim_cur) / 1024);
    const TScriptWorkspace workspace("CreateProcess('sh -c \"ulimit -Sd > DIR/limit\"', 0, true)");
    const TRealAgent agent(workspace.Path("settings"));
    MakePdf(workspace.Path("in/a.pdf"), 1);
    ASSERT_TRUE(Eventually([&] { return workspace.Has("in/process/a.pdf"); }));
    EXPECT_EQ(workspace.Read("limit").trimmed(), kilobytes);
}

TEST(ScriptScenario, AnUpgradeHarmsNoRunningAgentAndMixesNoVersions) {
    const TScriptWorkspace workspace("true");
    const string program = workspace.Path("bin/morvane-agent");
    const string worker = workspace.Path("bin/morvane-worker");
    const string module = workspace.Path("lib/morvane/morvane-script.so");
    workspace.Write("bin/.keep", {});
    workspace.Write("lib/morvane/.keep", {});
    ASSERT_TRUE(QFile::copy(MORVANE_AGENT, program));
    ASSERT_TRUE(QFile::copy(QFileInfo(MORVANE_AGENT).path() + "/morvane-worker", worker));
    ASSERT_TRUE(QFile::copy(QFileInfo(MORVANE_AGENT).path() + "/../lib/morvane/morvane-script.so", module));
    QByteArray other = workspace.Read("lib/morvane/morvane-script.so");
    ASSERT_TRUE(other.contains(QByteArray(MORVANE_VERSION) + '\0'));
    other.replace(QByteArray(MORVANE_VERSION) + '\0', QByteArray(sizeof MORVANE_VERSION - 1, '9') + '\0');
    {
        TRealAgent agent(workspace.Path("settings"), TRealAgent::TDisplay::None, program);
        ASSERT_TRUE(Eventually([&] { return workspace.Has("settings/morvane_watched_folders.lock"); }));
        workspace.Write("lib/morvane/new", other);
        ASSERT_EQ(std::rename(Narrow(workspace.Path("lib/morvane/new")), Narrow(module)), 0);
        ASSERT_TRUE(QFile::remove(worker));
        MakePdf(workspace.Path("in/a.pdf"), 1);
        EXPECT_TRUE(Eventually([&] { return workspace.Has("in/process/a.pdf"); }))
            << "with the former module";
        EXPECT_TRUE(workspace.Has("in/output/a.pdf"));
    }
    ASSERT_TRUE(QFile::copy(QFileInfo(MORVANE_AGENT).path() + "/morvane-worker", worker));
    TRealAgent agent(workspace.Path("settings"), TRealAgent::TDisplay::None, program);
    MakePdf(workspace.Path("in/b.pdf"), 1);
    EXPECT_TRUE(Eventually([&] { return workspace.Has("in/Error/b.pdf"); }));
    const QByteArray log = workspace.Read("c/logs/" + workspace.Names("c/logs").value(0));
    EXPECT_TRUE(log.contains("is of version 99999, the program of version " MORVANE_VERSION))
        << log.constData();
}
