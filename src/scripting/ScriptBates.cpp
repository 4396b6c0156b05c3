#include "scripting/ScriptBates.h"

#include "engine/document/Document.h"

bool TJSBatesDictionary::ApplySchemeToDocument(TJSPDFDocument* Document, const string& PageRange) {
    if (Document == nullptr || !Document->Document().GetCanModify())
        return false;
    TZQPDFBatesDictionary::ApplySchemeToDocument(Document->Document(), PageRange);
    Document->Document().SetModified(true);
    return true;
}
