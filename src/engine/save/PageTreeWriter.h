#pragma once
// Our page list brought into the file's objects.
#include "engine/core/DocumentCore.h"

/// Makes new and copied pages, applies rotations and crops, and rebuilds the page tree if pages came, went
/// or moved; what led to deleted pages is pruned then. Afterwards every page is one of the source.
void ApplyPages(TDocumentCore& core);
