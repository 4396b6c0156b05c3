#pragma once
// What the agent knows of itself: which lists are in force, what stands in their way, and how each folder
// fares. The folders thread writes it, any thread reads it; each call is whole for itself.
#include "base/Text.h"
#include "ledger/LedgerQueue.h"

#include <QDateTime>
#include <QMap>
#include <QStringList>

#include <chrono>
#include <mutex>
#include <optional>
#include <vector>

/// The agent as a whole.
enum class TAgentState {
    Starting,
    Serving,
    Waiting,  ///< no good version of the configuration has been seen yet
    Stopping, ///< it was told to end
    Ended,    ///< the folders thread has ended by itself; nothing is served any more
};

enum class TFolderState {
    Watching,
    Working,
    Paused,  ///< disabled in the configuration
    Waiting, ///< files are kept back by something that may pass, as a full disk
    Broken,  ///< can't be served, as a folder that isn't there
};

/// Since the start of the agent, but for Waiting, which is the number at the last look.
struct TFolderCounts {
    qint64 Waiting = 0;
    qint64 Done = 0;
    qint64 Warned = 0;
    qint64 Failed = 0;
};

/// A worker process.
struct TWorkerState {
    qint64 Process = 0;   ///< its number
    bool Scripts = false; ///< works on the files of lists with scripts
    string Sandbox;       ///< what holds it back, as "landlock, seccomp"; empty until it has begun
    string File;          ///< path, while it works on one
};

/// The two configuration files.
enum class TListKind { Folders, Actions };

class TAgentStatus {
public:
    /// Something that somebody should look at. `Subject` stays the same while its text changes.
    struct TTrouble {
        string Subject;
        string Text;
        bool operator==(const TTrouble&) const = default;
    };

    /// `since` is when the agent was started.
    explicit TAgentStatus(const QDateTime& since = QDateTime::currentDateTime()) : FSince(since) {}

    void SetAgent(TAgentState state, const string& reason = {});
    /// The folders thread has begun another tick.
    void Ticked();
    /// The folders in force, in their order. One that was there before keeps its state, unless that is
    /// Paused, and its counts.
    void SetFolders(const QStringList& names);

    // A folder that SetFolders hasn't named is added.
    /// True if this is another state than before, or another reason.
    bool SetState(const string& folder, TFolderState state, const string& reason = {});
    /// The folder works on `file`, a name without path, until its next state.
    void SetWorking(const string& folder, const string& file);
    void SetWaiting(const string& folder, qint64 files);
    /// Another agent that serves it as well; empty for none.
    void SetOther(const string& folder, const string& agent);
    void CountDone(const string& folder);
    void CountWarned(const string& folder); ///< done, with warnings; not counted as done as well
    void CountFailed(const string& folder);

    /// All that there are now.
    void SetWorkers(std::vector<TWorkerState> workers);

    void SetLedger(const TLedgerQueueState& ledger);

    /// The file was read and is in force; takes its fault away.
    void ListsLoaded(TListKind kind, const QDateTime& time);
    /// The file as it stands now can't be used; `text` names it, with line and column where there are any.
    /// True if this fault wasn't known before.
    bool ConfigurationFault(TListKind kind, const string& text);
    void ConfigurationFaultCleared(TListKind kind);

    [[nodiscard]] TAgentState Agent() const;
    [[nodiscard]] QStringList FolderNames() const;
    /// There is something to count: files, or folders that aren't served.
    [[nodiscard]] bool HasNews() const;
    /// A file is at work in some folder.
    [[nodiscard]] bool Working() const;
    /// Since the start, by the names of the folders that had any.
    [[nodiscard]] QMap<string, qint64> Failures() const;
    /// The worst first; empty while all is well.
    [[nodiscard]] std::vector<TTrouble> Troubles() const;
    /// One short sentence for people, as "2 folders, 7 files done, 1 failed.".
    [[nodiscard]] string Summary() const;
    /// One line, an object (docs/configuration.md).
    [[nodiscard]] QByteArray ToJson() const;

private:
    struct TFolder {
        string Name;
        TFolderState State = TFolderState::Watching;
        string Reason;
        string File;  ///< while Working
        string Other; ///< agent
        TFolderCounts Counts;
    };
    struct TList {
        QDateTime Loaded; ///< invalid until it is in force
        string Fault;
    };

    [[nodiscard]] TFolder& Find(const string& folder);
    [[nodiscard]] TList& Of(TListKind kind) { return kind == TListKind::Folders ? FFolderList : FActionList; }
    [[nodiscard]] static class QJsonObject ListJson(const TList& list);
    [[nodiscard]] static class QJsonObject FolderJson(const TFolder& folder);

    mutable std::mutex FLock;
    const QDateTime FSince;
    std::chrono::steady_clock::time_point FTicked = std::chrono::steady_clock::now();
    TAgentState FAgent = TAgentState::Starting;
    string FReason;
    std::vector<TFolder> FFolders;
    std::vector<TWorkerState> FWorkers;
    std::optional<TLedgerQueueState> FLedger; ///< none is kept
    TList FFolderList;
    TList FActionList;
};
