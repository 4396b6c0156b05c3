#pragma once
// Optional content groups of copied pages keep being shown or hidden as they were.
#include "engine/import/ObjectCopier.h"

/// Lists the groups that were copied in the catalog of `target`, off where they are off in the source.
void JoinOptionalContent(TObjectCopier& copier, QPDF& target);
