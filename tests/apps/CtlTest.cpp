#include "agent/AgentStatus.h"
#include "agent/NamedPipeThread.h"
#include "platform/NamedPipeServer.h"
#include "testing/RuntimeFolder.h"
#include "testing/Workspace.h"

#include <QRegularExpression>

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

TProgramResult Ctl(const QString& words) {
    return RunProgram(MORVANECTL, words.split(' ', Qt::SkipEmptyParts));
}

struct TTarget : TRefreshTarget {
    void RefreshFolders() override { ++Folders; }
    void RefreshActions() override { ++Actions; }
    string SetPaused(const string& folder, bool paused) override {
        return folder == u"/in" && paused ? string() : QStringLiteral("not %1").arg(folder);
    }
    std::atomic<int> Folders = 0;
    std::atomic<int> Actions = 0;
};

class CtlTest : public TRuntimeFolderTest {
protected:
    CtlTest() {
        FStatus.SetAgent(TAgentState::Serving);
        FStatus.SetFolders({"/in"});
    }
    /// The pipe's thread needs a moment to bring its pipe up.
    static void WaitForAgent() {
        while (Ctl("-q check").Exit != 0) {
        }
    }
    static QString Source(const char* path) { return QString(MORVANE_SOURCE) + '/' + path; }

    TAgentStatus FStatus;
};

TEST_F(CtlTest, SaysWhetherTheAgentRuns) {
    const TProgramResult without = Ctl("check");
    EXPECT_EQ(without.Exit, 1);
    EXPECT_EQ(without.Out, "");
    EXPECT_EQ(without.Errors, "The agent is not running.\n");
    EXPECT_EQ(Ctl("--quiet refresh actions").Exit, 1);

    const TNamedPipeThread agent(nullptr, FStatus);
    WaitForAgent();
    const TProgramResult with = Ctl("check");
    EXPECT_EQ(with.Exit, 0);
    EXPECT_EQ(with.Out, "The agent is running.\n");
    EXPECT_EQ(with.Errors, "");
    EXPECT_EQ(Ctl("check -q").Out, "");
}

TEST_F(CtlTest, CheckFailsWhereNothingIsServed) {
    const TNamedPipeThread agent(nullptr, FStatus);
    WaitForAgent();
    const auto check = [] {
        const TProgramResult result = Ctl("check");
        return std::to_string(result.Exit) + ' ' + (result.Out + result.Errors).toStdString();
    };
    FStatus.SetState("/out", TFolderState::Broken, "no\x1b[2Jdisk");
    EXPECT_EQ(check(), "0 The agent is running.\n\"/out\" is broken: no?[2Jdisk\n");
    FStatus.ConfigurationFault(TListKind::Actions, "line 7");
    EXPECT_THAT(check(),
                HasSubstr("0 The agent is running.\nThe last good configuration is in force: line 7\n"));
    FStatus.SetState("/in", TFolderState::Paused, "disabled");
    EXPECT_EQ(check(), "5 The agent runs and serves nothing: \"/out\" is broken: no?[2Jdisk\n");
    FStatus.SetFolders({});
    EXPECT_EQ(check(), "5 The agent runs and serves nothing: no folder is configured.\n");
    FStatus.SetAgent(TAgentState::Ended, "A bug.");
    EXPECT_EQ(check(), "5 The agent runs and serves nothing: A bug.\n");
}

TEST_F(CtlTest, StatusSpeaksToPeopleAndToPrograms) {
    const TNamedPipeThread agent(nullptr, FStatus);
    WaitForAgent();
    FStatus.ListsLoaded(TListKind::Folders, QDateTime::currentDateTime());
    FStatus.CountFailed("/in");
    FStatus.SetWorking("/in", "a.pdf");
    const TProgramResult people = Ctl("status");
    EXPECT_EQ(people.Exit, 0);
    EXPECT_THAT(people.Out.toStdString(), HasSubstr(", serving, started 20"));
    EXPECT_THAT(people.Out.toStdString(), HasSubstr("watchedfolders.xml: of 20"));
    EXPECT_THAT(people.Out.toStdString(),
                HasSubstr("actions.xml: not read yet\n"
                          "/in\n    working on a.pdf\n"
                          "    0 done, 0 done with warnings, 1 failed, 0 waiting\n"));
    const TProgramResult programs = Ctl("status --json");
    EXPECT_EQ(programs.Exit, 0);
    EXPECT_THAT(programs.Out.toStdString(), HasSubstr(R"("state":"working")"));
}

TEST_F(CtlTest, ARefreshHasReachedTheAgentWhenTheCommandEnds) {
    TTarget target;
    const TNamedPipeThread agent([&] { return &target; }, FStatus);
    WaitForAgent();
    EXPECT_EQ(Ctl("refresh folders").Exit, 0);
    EXPECT_EQ(target.Folders, 1);
    EXPECT_EQ(target.Actions, 0);
    EXPECT_EQ(Ctl("pause /in").Exit, 0);
    const TProgramResult resumed = Ctl("resume /in/../other");
    EXPECT_EQ(resumed.Exit, 1);
    EXPECT_EQ(resumed.Errors, "not /other\n");
    const TProgramResult actions = Ctl("refresh actions");
    EXPECT_EQ(actions.Exit, 0);
    EXPECT_EQ(actions.Out + actions.Errors, "");
    EXPECT_EQ(target.Folders, 1);
    EXPECT_EQ(target.Actions, 1);
}

TEST_F(CtlTest, AnAgentThatHangsIsNotWaitedForLongerThanTold) {
    TNamedPipeServer hanging("morvane_watched_folders", ".");
    hanging.OpenPipe();
    for (const char* words : {"check --timeout 0.2", "-t 0 refresh folders"}) {
        const TProgramResult result = Ctl(words);
        EXPECT_EQ(result.Exit, 3) << words;
        EXPECT_EQ(result.Errors, "The agent does not answer.\n") << words;
    }
}

TEST_F(CtlTest, WrongUsageIsToldApart) {
    const struct {
        const char* Words;
        const char* Message;
    } cases[] = {
        {"", "A command is missing."},
        {"start", "Unknown command \"start\"."},
        {"Check", "Unknown command \"Check\"."},
        {"check now", "The command \"check\" takes nothing more."},
        {"lint a b", "The command \"lint\" takes one folder."},
        {"refresh", "The command \"refresh\" needs one of: folders actions."},
        {"refresh all", "The command \"refresh\" needs one of: folders actions."},
        {"refresh folders actions", "The command \"refresh\" needs one of: folders actions."},
        {"check -t soon", "\"soon\" is not a number of seconds up to 3600."},
        {"check -t -1", "\"-1\" is not a number of seconds up to 3600."},
        {"check -t nan", "\"nan\" is not a number of seconds up to 3600."},
        {"check --loud", "Unknown option 'loud'."},
        {"check --json", "The command \"check\" has no JSON."},
    };
    for (const auto& c : cases) {
        const TProgramResult result = Ctl(c.Words);
        EXPECT_EQ(result.Exit, 2) << c.Words;
        EXPECT_EQ(result.Out, "") << c.Words;
        EXPECT_EQ(result.Errors, QByteArray("morvanectl: ") + c.Message + " Try \"morvanectl --help\".\n");
    }
}

TEST_F(CtlTest, TheManualAndTheCompletionKnowWhatTheHelpKnows) {
    EXPECT_EQ(Ctl("--version").Out, "morvanectl " MORVANE_VERSION "\n");
    const TProgramResult help = Ctl("--help");
    ASSERT_EQ(help.Exit, 0);
    QFile manual(Source("docs/man/morvanectl.1"));
    QFile completion(Source("completions/bash/morvanectl"));
    ASSERT_TRUE(manual.open(QIODevice::ReadOnly) && completion.open(QIODevice::ReadOnly));
    const std::string manualText = manual.readAll().replace("\\-", "-").toStdString();
    const std::string completionText = completion.readAll().toStdString();
    int words = 0;
    for (const QString& line : QString::fromUtf8(help.Out).split('\n')) {
        if (!line.startsWith("  "))
            continue;
        // Everything in the left column but placeholders.
        for (const QString& word : line.mid(2, 24).split(QRegularExpression("[ ,|]+"), Qt::SkipEmptyParts)) {
            if (word.startsWith('<') || word.startsWith('['))
                continue;
            ++words;
            EXPECT_THAT(manualText, HasSubstr(word.toStdString()));
            EXPECT_THAT(completionText, HasSubstr(word.toStdString()));
        }
    }
    EXPECT_GE(words, 14);
}

TEST_F(CtlTest, BashCompletesCommandsTheirWordsAndOptions) {
    const struct {
        const char* Line; ///< the last word is the one to complete; "_" stands for an empty one
        const char* Offered;
    } cases[] = {
        {"_", "init lint check status pause resume refresh history failed retry numbers metrics"},
        {"re", "resume refresh retry"},
        {"refresh _", "folders actions"},
        {"-q refresh f", "folders"},
        {"--timeout _", ""},
        {"--timeout 3 c", "check"},
        {"check _", ""},
        {"l", "lint"},
        {"st", "status"},
        {"lint /us", "/usr"},
        {"init /usr x", ""},
        {"refresh folders _", ""},
        {"check --q", "--quiet"},
        {"history --st", "--state"},
        {"retry --a", "--all"},
    };
    for (const auto& c : cases) {
        const QString words = QString(c.Line).replace('_', "''");
        const TProgramResult result = RunProgram(
            "bash",
            {"-c", QString("source '%1'; COMP_WORDS=(morvanectl %2); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                           "_morvanectl; echo \"${COMPREPLY[*]}\"")
                       .arg(Source("completions/bash/morvanectl"), words)});
        EXPECT_EQ(result.Out, QByteArray(c.Offered) + "\n") << c.Line;
    }
}

} // namespace
