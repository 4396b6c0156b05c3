#pragma once
// A folder held open. What is done in it goes by its descriptor, so a link or another folder that somebody
// puts in its place meanwhile leads nowhere.
#include "base/Text.h"

#include <sys/stat.h>
#include <sys/types.h>

class TFolder;
using TFolderPtr = std::shared_ptr<const TFolder>;

class TFolder {
public:
    /// Opens `path`, links followed. Raises EFileError.
    [[nodiscard]] static TFolderPtr Open(const string& path);
    /// Opens the folder `name` directly below `parent`; makes it where it is missing, with the mode (but for
    /// the sticky bit) and the group of `parent`: who may drop files there may take the results away. A
    /// symbolic link counts only if this process's user or root owns it. Raises EFileError.
    [[nodiscard]] static TFolderPtr OpenBelow(const TFolderPtr& parent, const string& name);

    ~TFolder();
    TFolder(const TFolder&) = delete;
    TFolder& operator=(const TFolder&) = delete;

    [[nodiscard]] int Descriptor() const { return FDescriptor; }
    /// As it was opened, with a delimiter at its end; for texts and names.
    [[nodiscard]] const string& Path() const { return FPath; }
    [[nodiscard]] bool IsSameAs(const TFolder& other) const;
    /// Anything at all has this name in the folder: a file, a folder, a link to nowhere.
    [[nodiscard]] bool Holds(const QByteArray& name) const;
    /// What has the name, links not followed; false where nothing has.
    [[nodiscard]] bool Look(const QByteArray& name, struct stat& info) const;
    /// Owner, group and mode: what decides who may rename here.
    [[nodiscard]] quint64 Rights() const;
    /// Brings what was renamed here to the disk. Raises EFileError.
    void Sync() const;

private:
    TFolder(const string& path, int descriptor);

    string FPath;
    int FDescriptor;
};

enum class FileSync { Off, On };
/// Off leaves out the waits for the disk, for measuring only: a power failure could then lose files.
void SetFileSync(FileSync mode);
[[nodiscard]] bool FilesAreSynced();
