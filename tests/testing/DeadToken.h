#pragma once
#include "base/RunToken.h"

#include <sys/wait.h>
#include <unistd.h>

/// The token of a process of this host and boot that has ended.
inline string DeadToken() {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    QByteArrayList parts = RunToken().split('-');
    parts[3] = QByteArray::number(child);
    return QString::fromLatin1(parts.join('-'));
}
