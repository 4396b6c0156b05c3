#pragma once
#include "scripting/ScriptDocument.h"

/// The process-wide script document through which every action, and every script's "Document", reaches the
/// document at hand. Made at first use. Only for the thread that runs the actions.
[[nodiscard]] TJSPDFDocument& ActionDocument();
