#pragma once
// An action that does what a fault of the program, or a hostile document, may do to a worker.
#include "actions/Action.h"
#include "base/Exceptions.h"
#include "engine/document/Document.h"

#include <QFile>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

class TPDFActionFault : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionFault() = default;
    PUBLISHED(string, Kind, FKind);
    PUBLISHED(string, Path, FPath); ///< of a file: what it does to it, or a mark that it was here before

    Cardinal Execute(TZQPDFDocument& Document) override {
        if (FKind == "crash") {
            ::signal(SIGSEGV, SIG_DFL);
            ::raise(SIGSEGV);
        } else if (FKind == "exit") {
            std::_Exit(7);
        } else if (FKind == "hang") {
            for (;;)
                ::pause();
        } else if (FKind == "await" && Document.GetPageCount() == 2) {
            for (int i = 0; i < 20; ++i) // which other workers make
                while (!QFile::exists(FPath.arg(i)))
                    ::usleep(1000);
        } else if (FKind == "eat") {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
            throw std::bad_alloc(); // what a sanitizer would make the process's end
#else
            std::vector<std::unique_ptr<char[]>> held;
            for (;;)
                held.push_back(std::make_unique<char[]>(1 << 20));
#endif
        } else if (FKind == "share") {
            constexpr size_t much = 600U << 20;
            void* const held = ::mmap(nullptr, much, PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
            for (std::memset(held, 1, much);;)
                ::pause();
        } else if (FKind == "write") {
            Forbid("write elsewhere", ::open(FPath.toUtf8(), O_WRONLY | O_CREAT, 0600));
        } else if (FKind == "empty") {
            Forbid("empty a file", ::open(FPath.toUtf8(), O_RDONLY | O_TRUNC));
        } else if (FKind == "read") {
            Forbid("read a private file", ::open(FPath.toUtf8(), O_RDONLY));
        } else if (FKind == "mode") {
            Forbid("change a mode", ::chmod(FPath.toUtf8(), 0777));
        } else if (FKind == "socket") {
            Forbid("open a socket", ::socket(AF_INET, SOCK_STREAM, 0));
        } else if (FKind == "program") {
            Forbid("start a program", ::fork());
        } else if (FKind == "killed once" && !QFile::exists(FPath)) {
            QFile mark(FPath);
            (void)mark.open(QIODevice::WriteOnly);
            mark.close();
            ::raise(SIGKILL);
        }
        return 0;
    }

private:
    /// -1 is what a system call is to give.
    static void Forbid(const char* what, int result) {
        if (result == 0 && string(what) == "start a program")
            std::_Exit(0); // the child
        if (result != -1)
            throw Exception(QStringLiteral("It could %1").arg(QLatin1String(what)));
    }
};

/// The same in a worker that may reach files.
class TPDFActionFileFault : public TPDFActionFault {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionFileFault() = default;
    PUBLISHED(string, FileName, FFileName);
};
