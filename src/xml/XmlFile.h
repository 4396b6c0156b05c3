#pragma once
// The bytes of XML files on the disk.
#include "base/PartFile.h"

/// All bytes of a regular file within the limits. Raises EFileError, also for anything that is no regular
/// file, or EXmlError.
[[nodiscard]] QByteArray ReadXmlFile(const string& fileName);

/// Replaces the file. Whoever looks at it at any instant, even after a crash, finds the whole old content
/// or the whole new one. A file behind a symbolic link is replaced where it lies, and the new one keeps
/// the old one's mode: passwords may stand in it. Raises EFileError, or EXmlError beyond the limits.
void WriteXmlFile(const string& fileName, const QByteArray& bytes);

/// The first half of that: the new contents are on the disk beside the file, which PublishReplacing()
/// replaces. Whatever could keep them from being written is met here.
[[nodiscard]] std::unique_ptr<TPartFile> PrepareXmlFile(const string& fileName, const QByteArray& bytes);
