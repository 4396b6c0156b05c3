#pragma once
// Which folders are paused by command, kept over restarts. A paused folder isn't listed; files at work are
// finished. Any thread may use it.
#include "base/Text.h"

#include <QStringList>

#include <mutex>

class TPauses {
public:
    /// Reads what runs before left in `stateFolder`; an empty name keeps nothing.
    explicit TPauses(const string& stateFolder);

    /// A path with or without a delimiter at its end.
    [[nodiscard]] bool IsPaused(const string& folder) const;
    /// Every folder is, whatever its name.
    [[nodiscard]] bool AllPaused() const;
    /// An empty name is every folder, and its end the end of all pauses. Raises EFileError where that can't
    /// be kept; nothing has changed then.
    void Set(const string& folder, bool paused);

private:
    void Save(const QStringList& paused) const;

    string FFile;
    mutable std::mutex FLock;
    QStringList FPaused; // paths; an empty one for every folder
};
