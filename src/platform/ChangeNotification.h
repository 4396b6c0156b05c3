#pragma once
// Notice that something changed in a folder: that, not what.
#include "base/Text.h"
#include "platform/Waiting.h"

#include <functional>
#include <memory>

/// What a notification reports, to be combined.
enum TChangeFilter : Cardinal {
    FILE_NOTIFY_CHANGE_FILE_NAME = 1,
    FILE_NOTIFY_CHANGE_DIR_NAME = 2,
    FILE_NOTIFY_CHANGE_ATTRIBUTES = 4,
    FILE_NOTIFY_CHANGE_SIZE = 8,
    FILE_NOTIFY_CHANGE_LAST_WRITE = 16,
    FILE_NOTIFY_CHANGE_SECURITY = 256,
};

enum class TSubtree { No, Yes };

/// Signalled once something has changed, until FindNext. It follows the folder itself, not its name: one
/// that was renamed is still watched, and one that was removed is never signalled again.
class TChangeNotification : public TWaitable {
public:
    /// Arms it anew. What changed since it was signalled counts.
    virtual void FindNext() = 0;
};

using TOpenChangeNotification = std::function<std::unique_ptr<TChangeNotification>(
    const string& directory, TSubtree subtree, Cardinal filters)>;

/// Null if the folder isn't there or can't be watched. With TSubtree::Yes folders made later are watched
/// too; those that can't be read are left out. Symbolic links below `directory` aren't followed.
[[nodiscard]] std::unique_ptr<TChangeNotification>
FindFirstChangeNotification(const string& directory, TSubtree subtree, Cardinal filters);
