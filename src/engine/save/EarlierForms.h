#pragma once
// What earlier runs have put on a document's pages.
#include "engine/core/DocumentCore.h"

/// The fonts of the forms that they drew, each once, of the first pages that have some: more than a few are
/// nothing that we would make.
[[nodiscard]] std::vector<QPDFObjectHandle> FontsOfEarlierForms(const TDocumentCore& core);
