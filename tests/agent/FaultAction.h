#pragma once
// An action that does what a fault of the program, or a hostile document, may do to a worker.
#include "actions/Action.h"
#include "base/Exceptions.h"

#include <QFile>

#include <csignal>
#include <cstdlib>
#include <unistd.h>

class TPDFActionFault : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionFault() = default;
    PUBLISHED(string, Kind, FKind);
    PUBLISHED(string, Path, FPath); ///< of a file: what it does to it, or a mark that it was here before

    Cardinal Execute(TZQPDFDocument& /*Document*/) override {
        if (FKind == "crash") {
            ::signal(SIGSEGV, SIG_DFL);
            ::raise(SIGSEGV);
        } else if (FKind == "exit") {
            std::_Exit(7);
        } else if (FKind == "hang") {
            for (;;)
                ::pause();
        } else if (FKind == "eat") {
            std::vector<std::unique_ptr<char[]>> held;
            for (;;)
                held.push_back(std::make_unique<char[]>(1 << 20));
        } else if (FKind == "killed once" && !QFile::exists(FPath)) {
            QFile mark(FPath);
            (void)mark.open(QIODevice::WriteOnly);
            mark.close();
            ::raise(SIGKILL);
        }
        return 0;
    }
};
