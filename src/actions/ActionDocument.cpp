#include "actions/ActionDocument.h"

TJSPDFDocument& ActionDocument() {
    static TJSPDFDocument document;
    return document;
}
