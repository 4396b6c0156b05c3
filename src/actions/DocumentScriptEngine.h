#pragma once
#include "scripting/DocumentScripting.h"

/// The script engine that all scripts of all actions share, with ActionDocument() as its "Document". Made at
/// the first call and used by the thread that made it, to the end of that thread; the next call makes
/// another. Failures of scripts leave one line each in the journal. Raises Exception while another thread has
/// it.
[[nodiscard]] TJSDocumentScripting& GetDocumentScripting();
