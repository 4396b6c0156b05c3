// A worker with an action that harms it.
#include "FaultAction.h"
#include "actions/ActionClasses.h"
#include "base/Reflection.h"
#include "platform/Signals.h"
#include "work/Worker.h"

#include <QCoreApplication>

#include <sys/prctl.h>

int main(int argc, char** argv) {
    (void)::prctl(PR_SET_PDEATHSIG, SIGKILL);
    IgnoreDisruptiveSignals();
    const QCoreApplication application(argc, argv);
    RegisterActionClasses();
    Reflection::RegisterClass(TPDFActionFault::staticMetaObject);
    Reflection::RegisterClass(TPDFActionFileFault::staticMetaObject);
    return RunWorker(TDescriptor(WorkerSocket), TDescriptor(WorkerLeash), argc > 1 ? argv[1] : "0");
}
