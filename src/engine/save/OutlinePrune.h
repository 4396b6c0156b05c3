#pragma once
// Outline items whose page is gone (ISO 32000-1, 12.3.3).
#include "engine/pdf/Qpdf.h"

#include <functional>

/// Takes out the items for which `leadsToGone` holds. One that has others below it stays as their heading
/// and leads nowhere.
void PruneOutlines(QPDF& pdf, const std::function<bool(const QPDFObjectHandle&)>& leadsToGone);
