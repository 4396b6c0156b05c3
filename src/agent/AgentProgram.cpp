#include "agent/AgentProgram.h"

#include "actions/ActionClasses.h"
#include "agent/FoldersAgentForm.h"
#include "agent/SystemRunHost.h"
#include "platform/AppInstances.h"
#include "platform/MessagePump.h"
#include "platform/ServiceNotice.h"
#include "platform/Signals.h"

#include <QCoreApplication>
#include <QEvent>

#include <cstdlib>

namespace {

constexpr int StopLimitMs = 5000;

constexpr char Identity[] = "{53F95304-BFF6-4D89-971E-E1366F4F10D5}";

/// A window system that dies makes its library call exit() in the middle of the event loop. The objects of
/// the thread that calls it go first then, so the threads end here while all that they use is still there.
/// (What is registered with atexit() comes too late: after the end of everything that was made since.)
struct TStopAtExit {
    TStopAtExit() = default;
    TStopAtExit(const TStopAtExit&) = delete;
    TStopAtExit& operator=(const TStopAtExit&) = delete;
    ~TStopAtExit() {
        if (TfrmFoldersAgent* form = frmFoldersAgent.load())
            form->StopThreads(TWindowSystem::Dead);
    }
};

/// The end of the session asks the application to quit, which the window system's library refuses as long as
/// a window does, such as an editor with a text to save.
class TQuitRequests : public QObject {
public:
    TQuitRequests() { QCoreApplication::instance()->installEventFilter(this); }
    bool eventFilter(QObject* receiver, QEvent* event) override {
        TfrmFoldersAgent* form = frmFoldersAgent.load();
        if (!form || event->type() != QEvent::Quit || receiver != QCoreApplication::instance())
            return false;
        form->Terminate();
        return true;
    }
};

} // namespace

std::unique_ptr<TAppInstances> CheckSingleInstance() {
    auto instances = JclAppInstances(QLatin1String(Identity));
    if (instances->CheckInstance(1))
        return instances;
    [[maybe_unused]] const int reached =
        instances->SendCmdLineParams(QLatin1String(TfrmFoldersAgent::WindowClass), 0);
    instances->SwitchTo(0);
    // The service that this was to be is served; a start without this word would be a failed one, and tried
    // again and again.
    ServiceNotice().Ready(QStringLiteral("Another agent of this user serves the folders."));
    TAppInstances::KillInstance();
}

int RunFoldersAgent(TAppInstances& instances) {
    TTerminationSignals endSignals;
    RegisterActionClasses();
    const TQuitRequests quitRequests;
    TMessagePump pump;
    pump.Watch(endSignals.Descriptor(), [&endSignals] {
        TfrmFoldersAgent* form = frmFoldersAgent.load();
        if (form && endSignals.Take())
            form->Terminate();
    });
    if (instances.Descriptor() >= 0)
        pump.Watch(instances.Descriptor(), [&instances] { instances.Receive(); });
    thread_local const TStopAtExit stop; // behind the pump, whose queue it needs
    TSystemClock clock;
    TSystemFolderFiles files;
    const string worker = QCoreApplication::applicationDirPath() + QStringLiteral("/morvane-worker");
    const TfrmFoldersAgent form({clock, files, StopLimitMs, worker});
    return form.Terminated() ? form.ExitCode() : QCoreApplication::exec();
}
