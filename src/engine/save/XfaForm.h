#pragma once
// Forms whose pages viewers make by themselves (XFA; ISO 32000-1, 12.7.8).
#include "engine/core/DocumentCore.h"

/// Whether viewers that know such forms make the pages anew and show nothing of those in the file.
[[nodiscard]] bool IsDynamicXfa(const QPDFObjectHandle& root);

/// Warns, before pending changes are written, where they are to pages that such viewers don't show.
void WarnOfUnseenPages(TDocumentCore& core);
