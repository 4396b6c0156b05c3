#pragma once
#include <QCoreApplication>

/// Drivers of databases need one.
inline void NeedApplication() {
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
}
