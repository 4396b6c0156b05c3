#pragma once
// The tree of form fields (ISO 32000-1, 12.7).
#include "engine/pdf/Qpdf.h"

#include <functional>

using TWidgetTest = std::function<bool(const QPDFObjectHandle&)>;

/// Takes the widgets for which `gone` holds out of the fields of the array, and the fields that have none
/// left. Fields that never had a widget stay. Gives the fields that are left.
[[nodiscard]] std::vector<QPDFObjectHandle> PruneFields(const QPDFObjectHandle& fields,
                                                        const TWidgetTest& gone);
