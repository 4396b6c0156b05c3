#pragma once
// Which process made a hidden file or folder, told by its name: where files can't be locked, this decides
// whether their maker still lives.
#include "base/Text.h"

/// Host, boot, process namespace, process id and start time of this process, as letters and digits joined by
/// "-"; about 30 bytes, fit for names of files.
[[nodiscard]] QByteArray RunToken();

enum class TRunState {
    Alive,
    Dead,
    Unknown, ///< a process of another host or container, of which nothing can be known here
};
/// Of the process that the token names; Unknown for what is no token.
[[nodiscard]] TRunState StateOfRun(const QByteArray& token);
