#pragma once
// What a file that is written anew as a whole must have, and what it can't keep.
#include "engine/core/DocumentCore.h"

/// Called last before the objects are written.
void ApplyRewriteRules(TDocumentCore& core);
