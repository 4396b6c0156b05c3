#include "platform/ChangeNotification.h"

#include "base/Journal.h"
#include "base/Paths.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <map>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr Cardinal NameEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
// Saves by rename and files whose times were set count as writes.
constexpr Cardinal WriteEvents = IN_CLOSE_WRITE | IN_MODIFY | IN_MOVED_TO | IN_ATTRIB;

Cardinal EventsOf(Cardinal filters) {
    Cardinal events = 0;
    if (filters & (FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME))
        events |= NameEvents;
    if (filters & (FILE_NOTIFY_CHANGE_ATTRIBUTES | FILE_NOTIFY_CHANGE_SECURITY))
        events |= IN_ATTRIB;
    if (filters & FILE_NOTIFY_CHANGE_SIZE)
        events |= IN_MODIFY;
    if (filters & FILE_NOTIFY_CHANGE_LAST_WRITE)
        events |= WriteEvents;
    return events;
}

/// Whether an event is what the filters ask for: those on names tell files from folders, the system doesn't.
bool Matches(Cardinal event, Cardinal filters) {
    const Cardinal unwantedNames =
        event & IN_ISDIR ? FILE_NOTIFY_CHANGE_FILE_NAME : FILE_NOTIFY_CHANGE_DIR_NAME;
    return (event & EventsOf(filters & ~unwantedNames)) != 0;
}

class TInotifyNotification : public TChangeNotification {
public:
    TInotifyNotification(TSubtree subtree, Cardinal filters)
        : FInotify(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)), FSubtree(subtree), FFilters(filters) {
        if (!FInotify)
            JournalLine(QStringLiteral("Cannot watch folders: the system gives no more notifications."));
    }

    /// False if `directory` can't be watched.
    bool Open(const QByteArray& directory) {
        FRoot = directory;
        AddTree(directory);
        FSignalled = false; // what was there before is no change
        return !FFolders.empty();
    }

    [[nodiscard]] int Descriptor() const override { return FInotify.Number(); }
    bool Take() override {
        if (!FSignalled)
            ReadEvents();
        return FSignalled;
    }
    void FindNext() override { FSignalled = false; }

private:
    void ReadEvents() {
        alignas(inotify_event) char bytes[16 * 1024];
        while (true) {
            const ssize_t count = ::read(FInotify.Number(), bytes, sizeof bytes);
            if (count <= 0)
                return;
            const inotify_event* event = nullptr;
            for (const char* at = bytes; at < bytes + count; at += sizeof *event + event->len) {
                event = reinterpret_cast<const inotify_event*>(at);
                Handle(*event);
            }
        }
    }

    void Handle(const inotify_event& event) {
        if (event.mask & IN_Q_OVERFLOW) {
            FSignalled = true; // whatever was lost was a change
            if (FSubtree == TSubtree::Yes)
                Rebuild();
        } else if (event.mask & IN_IGNORED) {
            FFolders.erase(event.wd);
        } else if (const auto folder = FFolders.find(event.wd); folder != FFolders.end() && event.len > 0) {
            // Events without a name are the folder's own, and no change in it.
            FSignalled = FSignalled || Matches(event.mask, FFilters);
            if (FSubtree == TSubtree::Yes && event.mask & IN_ISDIR)
                FollowFolder(event.mask, folder->second + '/' + event.name);
        }
    }

    void FollowFolder(Cardinal event, const QByteArray& path) {
        if (event & (IN_MOVED_FROM | IN_DELETE))
            RemoveTree(path);
        else if (event & (IN_CREATE | IN_MOVED_TO))
            AddTree(path);
    }

    /// Watches a folder and what is below it. What stands in a folder that has just come was made before it
    /// could be watched, so it counts as made now.
    void AddTree(const QByteArray& top) {
        std::vector<QByteArray> rest{top};
        while (!rest.empty()) {
            const QByteArray folder = std::move(rest.back());
            rest.pop_back();
            if (AddFolder(folder) && FSubtree == TSubtree::Yes)
                ListFolder(folder, rest);
        }
    }

    bool AddFolder(const QByteArray& folder) {
        Cardinal events = EventsOf(FFilters) | IN_ONLYDIR | IN_EXCL_UNLINK;
        if (FSubtree == TSubtree::Yes)
            events |= IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
        if (folder != FRoot)
            events |= IN_DONT_FOLLOW;
        const int watch = ::inotify_add_watch(FInotify.Number(), folder.constData(), events);
        if (watch >= 0)
            FFolders[watch] = folder;
        else if (errno == ENOSPC || errno == ENOMEM)
            JournalLine(QStringLiteral("Cannot watch the folder \"%1\": the system has no watch left.")
                            .arg(Widen(folder)));
        return watch >= 0;
    }

    void ListFolder(const QByteArray& folder, std::vector<QByteArray>& subfolders) {
        DIR* listing = ::opendir(folder.constData());
        if (!listing)
            return;
        while (const dirent* entry = ::readdir(listing)) {
            if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
                continue;
            QByteArray path = folder + '/' + entry->d_name;
            const bool isFolder = IsFolder(*entry, path);
            if (Matches(isFolder ? IN_CREATE | IN_ISDIR : IN_CREATE | IN_MODIFY, FFilters))
                FSignalled = true;
            if (isFolder)
                subfolders.push_back(std::move(path));
        }
        ::closedir(listing);
    }

    static bool IsFolder(const dirent& entry, const QByteArray& path) {
        struct stat info {};
        return entry.d_type == DT_DIR ||
               (entry.d_type == DT_UNKNOWN && ::lstat(path.constData(), &info) == 0 && S_ISDIR(info.st_mode));
    }

    void RemoveTree(const QByteArray& top) {
        std::erase_if(FFolders, [&](const auto& watched) {
            const QByteArray& path = watched.second;
            const bool below = path == top || path.startsWith(top + '/');
            if (below)
                ::inotify_rm_watch(FInotify.Number(), watched.first);
            return below;
        });
    }

    void Rebuild() {
        RemoveTree(FRoot);
        AddTree(FRoot);
    }

    TDescriptor FInotify;
    TSubtree FSubtree;
    Cardinal FFilters;
    QByteArray FRoot;
    std::map<int, QByteArray> FFolders; ///< by watch descriptor
    bool FSignalled = false;
};

} // namespace

std::unique_ptr<TChangeNotification> FindFirstChangeNotification(const string& directory, TSubtree subtree,
                                                                 Cardinal filters) {
    auto notification = std::make_unique<TInotifyNotification>(subtree, filters);
    QByteArray path = PathBytes(directory);
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    if (!notification->Open(path))
        return nullptr;
    return notification;
}
