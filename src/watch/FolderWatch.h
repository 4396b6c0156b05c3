#pragma once
// TFolderWatch: an event, on the thread that made the component, when something has changed in a folder.
#include "base/Component.h"
#include "platform/ChangeNotification.h"
#include "platform/HiddenWindow.h"

#include <QFlags>

#include <functional>
#include <memory>

class TWatchThread;

class TFolderWatch : public TComponent {
    Q_OBJECT
public:
    enum TNotifyFilter : quint8 {
        nfFilename = 1,
        nfDirname = 2,
        nfAttrib = 4,
        nfSize = 8,
        nfLastWrite = 16,
        nfSecurity = 32,
    };
    Q_DECLARE_FLAGS(TNotifyFilters, TNotifyFilter)
    Q_FLAG(TNotifyFilters)
    using TNotifyEvent = std::function<void(TFolderWatch& sender)>;

private:
    Q_PROPERTY(string Directory READ Directory WRITE SetDirectory)
    Q_PROPERTY(TNotifyFilters NotifyFilters READ NotifyFilters WRITE SetNotifyFilters)
    Q_PROPERTY(bool WatchSubDirs READ WatchSubDirs WRITE SetWatchSubDirs)
    Q_PROPERTY(bool Active READ Active WRITE SetActive)
    Q_PROPERTY(TNotifyEvent OnChange READ OnChange WRITE SetOnChange)

public:
    explicit TFolderWatch(TComponent* owner, TDesigning designing = TDesigning::No);
    /// Stops the watch first.
    ~TFolderWatch() override;

    /// With its trailing delimiter; "/" at first. An empty one stops the watch. Raises Exception for a
    /// folder that doesn't exist, and keeps the former one. While active, the same thread goes on there.
    [[nodiscard]] string Directory() const { return fDirectory; }
    void SetDirectory(const string& directory);

    /// What counts as a change: at first names of files and folders, and writes. Another set, or another
    /// WatchSubDirs, takes a new thread.
    [[nodiscard]] TNotifyFilters NotifyFilters() const { return fNotifyFilters; }
    void SetNotifyFilters(TNotifyFilters filters);
    /// Whether folders below count too.
    [[nodiscard]] bool WatchSubDirs() const { return fWatchSubDirs; }
    void SetWatchSubDirs(bool watchSubDirs);

    /// Raises Exception if the folder doesn't exist, and stays inactive. Switching off blocks until the
    /// thread is through.
    [[nodiscard]] bool Active() const { return fActive; }
    void SetActive(bool active);

    /// Called once for a burst of changes.
    [[nodiscard]] TNotifyEvent OnChange() const { return fOnChangeEvent; }
    void SetOnChange(TNotifyEvent event) { fOnChangeEvent = std::move(event); }

    /// The running thread, null while inactive.
    [[nodiscard]] const TWatchThread* Thread() const { return fWatchThread.get(); }

private:
    void WndProc(TMessage& message);
    void StartThread();
    void Restart();

    const TDesigning fDesigning;
    std::unique_ptr<THiddenWindow> fWindow;
    std::unique_ptr<TWatchThread> fWatchThread;
    bool fWatchSubDirs = false;
    string fDirectory = QStringLiteral("/");
    bool fActive = false;
    TNotifyFilters fNotifyFilters = TNotifyFilters(nfFilename) | nfDirname | nfLastWrite;
    TNotifyEvent fOnChangeEvent;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TFolderWatch::TNotifyFilters)

/// The platform's flags for a set of filters.
[[nodiscard]] Cardinal ChangeFiltersOf(TFolderWatch::TNotifyFilters filters);
