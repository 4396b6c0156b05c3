#pragma once
// Digital signatures (ISO 32000-1, 12.8).
#include "engine/pdf/Qpdf.h"

/// The signature fields below the catalog's form that hold a signature.
[[nodiscard]] int CountSignatures(const QPDFObjectHandle& root);
