#pragma once
// Many producers give all pages one resource dictionary. A page taken out of such a file would take
// everything along that any of them uses.
#include "engine/pages/PageObject.h"

/// For each of the pages, all copied from `source`, whether it shares resources with pages that are not
/// among them.
[[nodiscard]] std::vector<bool> SharesResources(const TPDFSource& source,
                                                const std::vector<TPageObject*>& pages);

/// Takes from a page, an object of its document, the resources that its contents don't name. Contents that
/// can't be read, or decode to very much, keep theirs all.
void DropUnusedResources(const QPDFObjectHandle& page);
