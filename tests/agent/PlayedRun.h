#pragma once
// The folders thread on a played clock: files are dropped, ticks are told to come, and what lies where
// afterwards is looked at. No test waits for real time.
#include "actions/ActionClasses.h"
#include "actions/ActionManager.h"
#include "agent/FoldersThread.h"
#include "testing/PlayedHost.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <QRegularExpression>

/// A configuration folder "c" and watched folders beside it.
class TPlayedRun : public testing::Test {
protected:
    TPlayedRun() { QDir().mkpath(FWorkspace.Path("c")); }

    static NarrowString Folder(const string& path, const string& action, const string& more = {}) {
        return Narrow("<Folder><Name>" + path +
                      "</Name><Enabled>true</Enabled><CheckEvery>1</CheckEvery><Action>" + action +
                      "</Action>" + more + "</Folder>");
    }
    void WriteFolders(const NarrowString& folders) {
        FWorkspace.Write("c/watchedfolders.xml",
                         "<WatchedFolder><Folders>" + folders + "</Folders></WatchedFolder>");
    }
    static NarrowString List(const string& name, const NarrowString& actions) {
        return "<ActionList><Name>" + Narrow(name) + "</Name><Actions>" + actions + "</Actions></ActionList>";
    }
    void WriteActions(const NarrowString& lists) {
        FWorkspace.Write("c/actions.xml",
                         "<ActionManager><ManagerActions>" + lists + "</ManagerActions></ActionManager>");
    }
    /// One folder "in" with one list "Rotate".
    void ConfigureOne(const string& more = {}) {
        QDir().mkpath(FWorkspace.Path("in"));
        WriteFolders(Folder(FWorkspace.Path("in"), "Rotate", more));
        WriteActions(List("Rotate", RotateAction));
    }
    string Drop(const string& name, int pages = 1) const {
        MakePdf(FWorkspace.Path("in/" + name), pages);
        return FWorkspace.Path("in/" + name);
    }
    void Start() {
        FClock.Restart();
        RegisterActionClasses();
        FThread = std::make_unique<TWatchedFoldersThread>(
            FWorkspace.Path("c/"),
            TRunHost{FClock, FFiles, FHint, FStatus, FState, nullptr, FLedger, FReasonFiles}, FSettings);
    }
    void Play(int ticks = 1) {
        if (FThread == nullptr)
            Start();
        FClock.Play(ticks);
    }
    [[nodiscard]] QStringList LogLines(const string& day = "2026.11.15") const {
        QStringList lines;
        for (const QByteArray& line : FWorkspace.Read("c/logs/" + day + ".txt").split('\n'))
            if (!line.isEmpty())
                lines.append(QString::fromLatin1(line.chopped(line.endsWith('\r') ? 1 : 0)));
        return lines;
    }
    [[nodiscard]] string Log() const { return LogLines().filter(QRegularExpression("^[^-*]")).join(u'\n'); }
    /// What lies in a folder "in" and its subfolders.
    [[nodiscard]] string Tree() const {
        QStringList all;
        for (const char* folder : {"in", "in/output", "in/process", "in/Error"})
            for (const string& name : FWorkspace.Names(folder))
                if (FWorkspace.Has(string(folder) + u'/' + name))
                    all.append(string(folder).mid(3) + u'/' + name);
        return all.join(u' ');
    }

    static inline const NarrowString RotateAction =
        R"(<Action Class="TPDFActionRotatePages"><Angle>90</Angle></Action>)";

    TWorkspace FWorkspace;
    TPlayedClock FClock;
    TPlainFiles FFiles;
    TNotedHint FHint;
    TAgentStatus FStatus;
    TRunSettings FSettings;
    TAgentLedger* FLedger = nullptr;
    bool FReasonFiles = false;
    string FState; ///< folder of the notes on files at work; none by default
    std::unique_ptr<TWatchedFoldersThread> FThread;
};
