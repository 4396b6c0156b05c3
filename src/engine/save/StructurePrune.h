#pragma once
// The logical structure (ISO 32000-1, 14.7) of pages that are gone.
#include "engine/pdf/Qpdf.h"

#include <vector>

/// Takes out the content of `gone` from the structure tree, and the elements that have none left.
void PruneStructure(QPDF& pdf, const std::vector<QPDFObjectHandle>& gone);
