#pragma once
// Looks for syntax errors in a script while it is written: on a thread and with an engine of its own, and
// only in the text that was given last.
#include "scripting/host/ScriptCore.h"

#include <QObject>
#include <QThread>

class TScriptChecker : public QObject {
    Q_OBJECT
public:
    TScriptChecker();
    /// Waits for the check under way.
    ~TScriptChecker() override;

    /// Answers with Checked later, unless another text comes first.
    void Check(const string& text);

Q_SIGNALS:
    /// An empty message: there is no error.
    void Checked(const TJSMessage& message);

private:
    class TWorker;
    QThread FThread;
    TWorker* FWorker; // lives on the thread
    int FAsked = 0;
};
