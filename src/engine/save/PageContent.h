#pragma once
// From the layers and groups of pages to PDF objects: contents, resources and annotations.
#include "engine/core/DocumentCore.h"

/// Writes what was put on pages into the source's objects. What was written before from layers that have
/// changed since is written again. The pages must be objects of the source (ApplyPages).
void ApplyContent(TDocumentCore& core);

/// The names, counted from 0, by which pages draw our forms.
[[nodiscard]] std::string FormName(int number);

/// Whether anything on the page waits for ApplyContent.
[[nodiscard]] bool HasPendingContent(const TZQPDFPage& page);
