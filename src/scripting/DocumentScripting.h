#pragma once
// TJSDocumentScripting: the engine with the classes, functions and constants of the document view.
#include "scripting/ScriptDocument.h"
#include "scripting/host/Engine.h"

class TJSDocumentScripting : public TJSEngine {
public:
    /// `MaxMemory` in bytes. A document becomes the global "Document" and stays its owner's; null declares
    /// none.
    TJSDocumentScripting(TJSPDFDocument* Document, Cardinal MaxMemory);
};

/// The classes that scripts can construct, in the order of their registration.
[[nodiscard]] QList<const QMetaObject*> ScriptClasses();
