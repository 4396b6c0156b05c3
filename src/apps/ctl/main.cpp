// morvanectl: asks and tells the running agent from a shell or a script.
#include "apps/ctl/CommandLine.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return RunCommandLine(QCoreApplication::arguments());
}
