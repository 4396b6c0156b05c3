#pragma once
// A hidden folder in which a run keeps the files that it has claimed, between the folder that they were
// dropped into and the one that they end in.
#include "base/Folder.h"

#include <QList>
#include <QStringList>

class TClaimFolder {
public:
    /// Makes nothing yet.
    explicit TClaimFolder(TFolderPtr parent) : FParent(std::move(parent)) {}
    /// Removes the folder if it is empty.
    ~TClaimFolder();
    TClaimFolder(const TClaimFolder&) = delete;
    TClaimFolder& operator=(const TClaimFolder&) = delete;

    /// The folder, made at the first call, mode 0700, locked while this object lives. Raises EFileError.
    [[nodiscard]] const TFolderPtr& Folder();

private:
    void Make();

    TFolderPtr FParent;
    TFolderPtr FFolder;
    QByteArray FName;
};

/// A claim folder of some run below `parent` holds a file of that name. Raises EFileError.
[[nodiscard]] bool HoldsClaimed(const TFolder& parent, const QByteArray& file);

/// Moves `file` from the folder `claims` back to `home`, under its own name or, where that is taken, the next
/// free one, which is the result. Raises EFileError; the file then stays where it is.
string GiveBack(const TFolder& claims, const string& file, const TFolder& home);

/// Gives the files that dead runs left claimed below `parent` back to `home`, each under its own name or,
/// where that is taken, the next free one, and removes their folders. Returns the names that were given back.
/// A run on a host of which nothing is known counts as dead when its folder has been untouched for a quarter
/// of an hour by the file system's clock. Raises EFileError where `parent` can't be listed.
QStringList SweepClaims(const TFolderPtr& parent, const TFolderPtr& home,
                        const QList<TFolderPtr>& settled = {});
