#pragma once
// The files of one folder that fit a mask.
#include "base/Text.h"

#include <QStringList>

class TFolder;

/// A mask knows "*" and "?" only and is matched without regard to case.
[[nodiscard]] bool MatchesMask(QStringView name, QStringView mask);

/// Natural order: runs of digits compare as numbers ("a2" before "a10"), all else without regard to case,
/// ties by code unit. It depends on nothing but the names, so every run sees the same order.
[[nodiscard]] bool NaturalLess(const string& a, const string& b);

/// Names, not paths, of the regular files directly in `folder`, in natural order. Symbolic links and
/// everything else that is no file are left out, and so are names that begin with a dot. Names that are no
/// valid UTF-8 can't be text: `unreadable`, if given, counts them. Raises EFileError.
[[nodiscard]] QStringList ListFiles(const string& folder, const string& mask, int* unreadable = nullptr);
[[nodiscard]] QStringList ListFiles(const TFolder& folder, const string& mask, int* unreadable = nullptr);
/// Names of everything in the folder but "." and "..", hidden things too, as the file system's bytes, in no
/// order. Raises EFileError.
[[nodiscard]] QList<QByteArray> ListAll(const TFolder& folder);
