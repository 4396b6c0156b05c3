#pragma once
// A file to attach, and the dictionary that names and holds it in a PDF (ISO 32000-1, 7.11.3).
#include "engine/pdf/Qpdf.h"

#include <QDateTime>

#include <memory>

struct TAttachedFile {
    string Name;
    string Description;
    string MimeType;
    QDateTime Created;
    QDateTime Modified;
    std::shared_ptr<const std::string> Contents; ///< compressed; null while there are none
    qint64 Size = 0;
    std::string Checksum; ///< MD5 of the uncompressed contents
};

/// The file at `path`. Without a name it has its own, without a type the one that name and contents tell.
/// Raises EFileError.
[[nodiscard]] TAttachedFile ReadAttachedFile(const string& path, const string& name,
                                             const string& description, const string& mimeType);

/// A Filespec dictionary for a file that has contents.
[[nodiscard]] QPDFObjectHandle NewFileSpec(QPDF& pdf, const TAttachedFile& file);

/// New contents for a Filespec dictionary, which keeps what else it says and what else refers to it.
void ReplaceFile(QPDF& pdf, QPDFObjectHandle spec, const TAttachedFile& file);
