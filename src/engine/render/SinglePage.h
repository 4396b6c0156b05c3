#pragma once
// One page as a document of its own: all that is needed to paint it, and nothing that leads back to the rest,
// so that it costs no more than the page however large its document is.
#include "engine/core/DocumentCore.h"

/// The bytes of an unprotected PDF with the zero-based page as it would be saved now: with what it inherits,
/// its annotations, the defaults of the form and the settings of optional content, on opaque white paper
/// (what is painted on a transparent ground blends differently).
[[nodiscard]] std::string SinglePagePdf(TDocumentCore& core, int page);
