#pragma once
// Attached files in the objects of a PDF.
#include "engine/core/DocumentCore.h"

/// Brings the confirmed changes to attachments into the source's objects.
void ApplyAttachments(TDocumentCore& core);

/// The names that the file's own attachments are shown by.
[[nodiscard]] QStringList AttachmentNames(const TPDFSource& source);

/// The dictionary that names and holds the file (ISO 32000-1, 7.11.3), for a change that has contents.
[[nodiscard]] QPDFObjectHandle NewFileSpec(QPDF& pdf, const TAttachmentChange& change);

/// A change that attaches the file at `path`. Raises EFileError.
[[nodiscard]] TAttachmentChange ReadAttachment(const string& path, const string& name,
                                               const string& description, const string& mimeType);
