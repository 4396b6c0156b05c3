#pragma once
// Many producers give all pages one resource dictionary. A page taken out of such a file would take
// everything along that any of them uses.
#include "engine/PageObject.h"

/// For each of the pages, all copied from `source`, whether it shares resources with pages that are not
/// among them.
[[nodiscard]] std::vector<bool> SharesResources(const TPDFSource& source,
                                                const std::vector<TPageObject*>& pages);
