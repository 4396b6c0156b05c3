#pragma once
// Paths as text. The delimiter is "/"; a path may lack it at its end, and joining code adds it.
#include "base/Text.h"

[[nodiscard]] string IncludeTrailingDelimiter(const string& path);
/// The part behind the last delimiter.
[[nodiscard]] string ExtractFileName(const string& path);
/// The part up to and with the last delimiter; empty where there is none.
[[nodiscard]] string ExtractFilePath(const string& path);
/// The path without its extension, the last "." of the file name and what follows it.
[[nodiscard]] string WithoutExtension(const string& path);

/// The path as the file system's bytes. Raises EFileError for one with a NUL character: the system would take
/// what stands before it for another path.
[[nodiscard]] QByteArray PathBytes(const string& path);

/// Follows symbolic links.
[[nodiscard]] bool DirectoryExists(const string& path);
/// A regular file, symbolic links followed.
[[nodiscard]] bool FileExists(const string& path);
/// Anything at all has this name: a file, a folder, a link to nowhere.
[[nodiscard]] bool NameTaken(const string& path);

/// Makes the folder and its parents where they are missing. Raises EFileError.
void ForceDirectories(const string& path);

/// Replaces each %NAME% by the environment's value; unknown names stay as they stand. The result has room
/// for 255 UTF-16 code units: a longer one is unusable, and empty is returned.
[[nodiscard]] string ExpandEnvironment(const string& text);
