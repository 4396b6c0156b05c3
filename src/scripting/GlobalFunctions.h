#pragma once
// TJSGlobalFunctions: what scripts can do outside the PDF, as global functions of these names: scripts,
// files, programs and dialogs. Names and parameters are a contract. Nothing here restricts a script: it may
// start any program that the agent's user may start.
#include "base/Reflection.h"
#include "scripting/host/NativeCall.h"

#include <QStringList>

class TJSEngine;

/// The engine that Include works on. Nothing assigns it, on purpose: scripts use IncludeResource, which takes
/// its engine from the call.
extern TJSEngine* GlobalScriptEngine;

class TJSGlobalFunctions {
    Q_GADGET
public:
    TJSGlobalFunctions() = delete;

    /// Always fails: see GlobalScriptEngine.
    Q_INVOKABLE static void Include(const string& ScriptFileName);
    /// Runs the Qt resource of that name (":/name") under the script name ":Include.Resource.name:". Does
    /// nothing for an empty name or an argument that is no string. Raises where there is no such resource.
    Q_INVOKABLE static void IncludeResource(TJSNativeCallParams Params);

    /// Starts `fileName` if it is a program, with `Parameters` split as CreateProcess does; anything else is
    /// opened by the desktop's opener. Waits for nothing. 42 if something was started; 2 where there is no
    /// such file, 5 where access is denied, 31 where nothing opens it. `hWnd` and `ShowCmd` mean nothing
    /// here; of `Operation`, empty, "open", "edit" and "explore" are known and the same.
    Q_INVOKABLE static quint64 ShellExecute(qint64 hWnd, const PWideChar& Operation,
                                            const PWideChar& fileName, const PWideChar& Parameters,
                                            const PWideChar& Directory, int ShowCmd);
    /// Starts a program without a shell. Words of `cmd` are separated by blanks; double quotes hold a word
    /// together, three of them are one quote. A failure to start gives the errno value, 2 for a missing file.
    /// With `wait` the result is the exit code, 128 and the signal's number for a program that a signal
    /// ended; the wait ends when the agent stops, and the program runs on. Without, it is 0. `ShowCmd` means
    /// nothing here.
    Q_INVOKABLE static quint32 CreateProcess(const string& cmd, quint32 ShowCmd, bool wait);

    Q_INVOKABLE static void ShowMessage(const string& S);
    /// The code of the button that ended the box (platform/MessageBox.h), whose caption names the file and
    /// the list that the script runs for. Without a desktop the text goes to the journal and the answer is
    /// that of a closed box.
    Q_INVOKABLE static int MessageBox(const string& Text, int flags);

    /// The first of `count` consecutive numbers of a series, which nobody else is given; from 1 to 1,000,000
    /// at once. Raises where no ledger is at hand; while the ledger can't be used the file waits, whatever
    /// the script does then.
    Q_INVOKABLE static qint64 TakeNumbers(const string& series, int count);

    Q_INVOKABLE static bool FileExists(const string& n);
    /// Paths of the files in the folder `p` whose names fit the mask, "*" and "?", in natural order, those of
    /// each folder before those of its subfolders. Links to folders aren't followed. Raises EFileError for a
    /// folder that can't be listed; an empty path is none, and holds nothing.
    Q_INVOKABLE static QStringList FindFiles(const string& p, const string& filter, bool TopDirOnly);
    Q_INVOKABLE static string ExtractFileName(const string& name);
    /// `ext` holds its dot.
    Q_INVOKABLE static string ChangeFileExt(const string& name, const string& ext);
    Q_INVOKABLE static string ExeName();
    /// Without a delimiter at its end.
    Q_INVOKABLE static string ExeFolder();
    Q_INVOKABLE static string IncludeTrailingBackslash(const string& S);
    Q_INVOKABLE static string ExcludeTrailingBackslash(const string& S);
};
