#pragma once
#include "actions/Action.h"

/// Runs a script on the document: the one action that binds to no method of the script document, and the one
/// whose failure ends a list.
class TPDFActionJavaScript : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionJavaScript() = default;
    PUBLISHED(string, Javascript, FJavascript);

    /// 0 if the script ran to success, else 1. What it has changed stays either way. All scripts share one
    /// global scope: what one leaves there is there for the next.
    Cardinal Execute(TZQPDFDocument& Document) override;

    /// Opens the script in the editor, which checks it with the engine of all scripts. Raises what
    /// GetDocumentScripting() raises, and nothing of its own.
    bool Config() override;
    [[nodiscard]] bool IsInterruptible() const override { return true; }
};
