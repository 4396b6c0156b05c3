#include "agent/HeadlessAgent.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    return RunHeadlessAgent();
}
