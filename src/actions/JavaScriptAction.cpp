#include "actions/JavaScriptAction.h"

#include "actions/ActionDocument.h"
#include "actions/DocumentScriptEngine.h"

Cardinal TPDFActionJavaScript::Execute(TZQPDFDocument& Document) {
    ActionDocument().SetDocument(&Document);
    const bool succeeded = GetDocumentScripting().Evaluate(FJavascript, QStringLiteral("PDFActions.Inline"));
    return succeeded ? 0 : 1;
}
