#include "actions/JavaScriptAction.h"

#include "actions/ActionDocument.h"
#include "actions/DocumentScriptEngine.h"
#include "scripting/ScriptEditorHost.h"

Cardinal TPDFActionJavaScript::Execute(TZQPDFDocument& Document) {
    ActionDocument().SetDocument(&Document);
    const bool succeeded = GetDocumentScripting().Evaluate(FJavascript, QStringLiteral("PDFActions.Inline"));
    return succeeded ? 0 : 1;
}

bool TPDFActionJavaScript::Config() {
    TJSCompletion completion = BuildCompletion();
    return ScriptEditorHost().ScriptEdit(FJavascript, &GetDocumentScripting(), &completion);
}
