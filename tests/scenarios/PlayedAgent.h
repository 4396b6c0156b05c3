#pragma once
// A configured workspace, and a run over it on a played clock in a process of its own, which a test may kill.
#include "actions/ActionClasses.h"
#include "agent/FoldersThread.h"
#include "base/FaultPoint.h"
#include "base/PartFile.h"
#include "testing/PlayedHost.h"
#include "testing/Workspace.h"

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

/// A workspace with one folder "in" and one list of two actions for it.
class TConfiguredWorkspace : public TWorkspace {
public:
    explicit TConfiguredWorkspace(const string& folderSettings = {}) {
        QDir().mkpath(Path("in"));
        QDir().mkpath(Path("c/logs"));
        Write("settings/morvane/settings.ini", "ConfigurationFolder=" + Path("c").toUtf8());
        Write("c/watchedfolders.xml", "<WatchedFolder><Folders><Folder><Name>" + Path("in").toUtf8() +
                                          "</Name><Enabled>true</Enabled><CheckEvery>1</CheckEvery>"
                                          "<Action>Work</Action>" +
                                          Narrow(folderSettings) + "</Folder></Folders></WatchedFolder>");
        Write("c/actions.xml",
              "<ActionManager><ManagerActions><ActionList><Name>Work</Name><Actions>"
              "<Action Class=\"TPDFActionRotatePages\"><Angle>90</Angle></Action>"
              "<Action Class=\"TPDFActionAddDocumentDescription\"><Description><Title>Worked on</Title>"
              "</Description></Action></Actions></ActionList></ManagerActions></ActionManager>");
    }
};

/// Runs `ticks` ticks of a folders thread in this process.
inline void PlayTicks(const TWorkspace& workspace, int ticks, TAgentLedger* ledger = nullptr) {
    RegisterActionClasses();
    TPlayedClock clock;
    TPlainFiles files;
    TNotedHint hint;
    TAgentStatus status;
    TWatchedFoldersThread thread(workspace.Path("c/"), {clock, files, hint, status, {}, nullptr, ledger});
    clock.Play(ticks);
}

/// Runs `work` in a child process. The caller waits for it or kills it.
inline pid_t InChild(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        std::_Exit(0);
    }
    return child;
}

/// True if the child ended by itself.
inline bool WaitForChild(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
