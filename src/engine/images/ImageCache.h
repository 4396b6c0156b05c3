#pragma once
// Images that were loaded before, so that the same file is read once and not ten thousand times a night.
#include "base/FileState.h"

#include <QHash>

#include <compare>
#include <memory>
#include <mutex>

class TImageFile;

/// Keeps the images used last up to a limit of bytes, and knows of all others as long as somebody uses them.
/// Any thread may call it.
class TImageCache {
public:
    explicit TImageCache(qint64 limit) : FLimit(limit) {}

    /// Null if that file isn't known or has changed.
    [[nodiscard]] std::shared_ptr<const TImageFile> Find(const string& path, const TFileState& stamp);
    void Add(const string& path, const TFileState& stamp, const std::shared_ptr<const TImageFile>& image,
             qint64 bytes);

private:
    struct TEntry {
        TFileState Stamp;
        qint64 Bytes;
        quint64 LastUse;
        std::weak_ptr<const TImageFile> Image;
        std::shared_ptr<const TImageFile> Kept; ///< null for what is over the limit
    };
    void Trim();

    std::mutex FMutex;
    QHash<string, TEntry> FEntries;
    qint64 FLimit;
    quint64 FUses = 0;
};
