#pragma once
// Programs that scripts start. They run in process groups of their own with signals as a login shell leaves
// them, read nothing, and write where the agent writes. They outlive the agent.
#include "base/Text.h"

#include <QStringList>

#include <sys/types.h>

struct TStartedProgram {
    int Error = 0; ///< errno value if it didn't start
    pid_t Process = -1;
};

enum class AnyFile { No, Yes };

/// A path as it stands, against `folder` if that is named; a bare name in the folders of PATH. Empty where
/// there is no such executable file; with AnyFile::Yes a path to another file is good too, for the start to
/// say what is wrong with it.
[[nodiscard]] string FindProgram(const string& name, const string& folder, AnyFile any = AnyFile::No);

/// `name` against `folder`; `name` alone if it is absolute or no folder is named.
[[nodiscard]] string AgainstFolder(const string& name, const string& folder);

/// 0 if the file can be read, else the errno value.
[[nodiscard]] int ReadError(const string& path);

/// In `folder`, or in the agent's own if that is empty.
[[nodiscard]] TStartedProgram StartProgram(const string& path, const QStringList& arguments,
                                           const string& folder);

/// Waits for the end and gives the exit code, or 128 and the signal's number. ECANCELED if the agent stops
/// meanwhile; the program runs on.
[[nodiscard]] int WaitForProgram(const TStartedProgram& program);
