#pragma once
// The document's XMP packet, and what a file claims to be.
#include "engine/pdf/Qpdf.h"

/// As the file has it; empty where it has none that can be decoded.
[[nodiscard]] NarrowString ReadXmp(QPDF& pdf);

/// The part of ISO 19005 (PDF/A) that the document says it follows: 1 to 4; 0 if it says none.
[[nodiscard]] int PdfAPart(QPDF& pdf);

/// Whether the file is PDF 2.0 or newer, by its header or its catalog (ISO 32000-2, 7.2.2).
[[nodiscard]] bool IsPdf2(QPDF& pdf);
