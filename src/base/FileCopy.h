#pragma once
// Copies and moves that lose nothing: a crash at any instant leaves the source, or a complete copy, or
// both. Every move is a copy and a delete, across volumes or not.
#include "base/Text.h"

/// What tells whether a path still leads to the contents that were read.
struct TFileIdentity {
    quint64 Device = 0;
    quint64 Inode = 0;
    qint64 Size = -1;
    qint64 ChangeTime = 0; ///< ctime in nanoseconds: copying tools can't set it
    bool operator==(const TFileIdentity&) const = default;
};
[[nodiscard]] TFileIdentity IdentityOf(int descriptor);
/// Of what has that name itself, links not followed; the default value where nothing has.
[[nodiscard]] TFileIdentity IdentityOf(const string& path);

/// Copies the whole of `source` to `dest`, replacing what is there. Raises EFileError.
void CopyFileContents(const string& source, const string& dest);

/// Copies `source` to `dest`, or where that name is taken to the free name that asking UniqueFileName
/// again and again gives, then deletes `source`. The source stays where it was replaced or written to
/// meanwhile, or can't be deleted. Returns the path of the copy. Raises EFileError, and what
/// UniqueFileName raises; the source is then untouched.
string MoveFileByCopy(const string& source, const string& dest);
