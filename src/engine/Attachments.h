#pragma once
// Attached files in the objects of a PDF.
#include "engine/DocumentCore.h"

/// Brings the confirmed changes to attachments into the source's objects.
void ApplyAttachments(TDocumentCore& core);

/// The names that the file's own attachments are shown by.
[[nodiscard]] QStringList AttachmentNames(const TPDFSource& source);

/// A change that attaches the file at `path`. Raises EFileError.
[[nodiscard]] TAttachmentChange ReadAttachment(const string& path, const string& name,
                                               const string& description, const string& mimeType);
