#pragma once
// Changes to attached files, written.
#include "engine/core/DocumentCore.h"

/// Brings the confirmed changes to attachments into the source's objects.
void ApplyAttachments(TDocumentCore& core);
