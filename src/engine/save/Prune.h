#pragma once
// Deleted pages really leave the file: nothing may refer to them any more, or they would be written along.
#include "engine/core/DocumentCore.h"

/// Takes out the links, outline items, named destinations, form fields and articles that led to the deleted
/// pages, and the pages themselves.
void PruneDeletedPages(TDocumentCore& core);
