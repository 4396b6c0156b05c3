// morvane-worker: works on files for the agent that started it.
#include "actions/ActionClasses.h"
#include "base/Journal.h"
#include "base/Module.h"
#include "platform/ProcessLimits.h"
#include "platform/Signals.h"
#include "work/Worker.h"

#include <QCoreApplication>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>

int main(int argc, char** argv) {
    if (::fcntl(WorkerSocket, F_SETFD, FD_CLOEXEC) != 0 || ::fcntl(WorkerLeash, F_SETFD, FD_CLOEXEC) != 0) {
        JournalLine(QStringLiteral("morvane-worker is started by morvane-agent."));
        return EXIT_FAILURE;
    }
    // The agent tells when to end; what a terminal or a service manager sends to all is for it.
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        ::signal(number, SIG_IGN);
    (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
    (void)::prctl(PR_SET_NAME, "morvane-worker"); // it was started by the number of an open file
    IgnoreDisruptiveSignals();
    HoldModulesFrom(WorkerModules); // of the agent's version
    const QCoreApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // the object above has set the user's; numbers in files know one form
    RegisterActionClasses();
    SetFormerDescriptorLimit(argc > 2 ? QByteArray(argv[2]).toULongLong() : 0); // the raised one is inherited
    return RunWorker(TDescriptor(WorkerSocket), TDescriptor(WorkerLeash), argc > 1 ? argv[1] : "0");
}
