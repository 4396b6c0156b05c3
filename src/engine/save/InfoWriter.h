#pragma once
// Document information, XMP and view settings: read from and written to the file's objects.
#include "engine/core/DocumentCore.h"

/// Brings information entries, dates, XMP and view settings into the source's objects.
void ApplyInfo(TDocumentCore& core);

/// As the file has them, pending changes aside. Without an information dictionary the packet tells.
[[nodiscard]] string ReadInfo(TPDFSource& source, const NarrowString& key);
[[nodiscard]] TPDFPageMode ReadPageMode(const TPDFSource& source);
[[nodiscard]] TPDFPageLayout ReadPageLayout(const TPDFSource& source);
