#pragma once
// A rename that never replaces, on any file system.
#include "base/Folder.h"

/// Gives what has the name `from` in the folder `source` the name `to` in `target`, unless something has that
/// already. `step` is the name of the fault point. 0, or an errno value: EEXIST for a name that is taken,
/// EXDEV for folders of two file systems.
///
/// One step where the file system can do that; else by a second link; else, where there are no links either,
/// by a rename over an empty file of our own that took the name first. A crash then leaves that empty file,
/// and a hidden note of it, by which SweepReservations takes it away.
[[nodiscard]] int MoveToNewName(const char* step, const TFolder& source, const QByteArray& from,
                                const TFolder& target, const QByteArray& to);

/// Removes the empty files in `folder` that dead runs left to reserve a name.
void SweepReservations(const TFolder& folder);
