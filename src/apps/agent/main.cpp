// morvane-agent: serves the watched folders of its user.
#include "agent/AgentProgram.h"
#include "agent/WorkMarks.h"
#include "base/Exceptions.h"
#include "base/Journal.h"
#include "base/Module.h"
#include "desktop/Desktop.h"
#include "platform/AppInstances.h"
#include "platform/ProcessLimits.h"
#include "platform/ServiceNotice.h"
#include "platform/Signals.h"
#include "timers/TimerManager.h"

#include <cstdlib>

int main() {
    try {
        IgnoreDisruptiveSignals();
        RaiseDescriptorLimit();
        HoldModules();
        MarkFatalSignals();
        [[maybe_unused]] const bool service = ServiceNotice().Listening(); // before there are threads
        const TTimerManagerUse timers;
        const auto instances = CheckSingleInstance();
        const TDesktop desktop;
        return RunFoldersAgent(*instances);
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("Unhandled exception: %1").arg(MessageOf(e)));
        return EXIT_FAILURE;
    }
}
