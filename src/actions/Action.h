#pragma once
// TPDFAction: one document operation with its settings. A concrete action holds almost no code: its class
// name selects a method of the script document, and that method's parameter names select the action's
// members (actions/Binding.h).
#include "base/Component.h"
#include "xml/XmlMarks.h"

class TZQPDFDocument;

class TPDFAction : public TComponent {
    Q_OBJECT
    XML_ROOT("Action", true)
    XML_PLACEHOLDER("TPDFUnknownAction")
public:
    Q_INVOKABLE TPDFAction();

    /// Carries the action out on an open document, which stays the caller's. 0 means go on with the next
    /// action; only exceptions and the results of overrides say otherwise, since a document method that
    /// answers false does not stop a list. Not for two threads at once.
    virtual Cardinal Execute(TZQPDFDocument& Document);

    /// Whether a stop of the agent may end the action before its work is done.
    [[nodiscard]] virtual bool IsInterruptible() const { return false; }

    /// Shows the action's settings dialog: the known class named like the action with TFrmPDF for
    /// TPDFAction, made with a null owner and the action. True if the user confirmed. Raises Exception where
    /// no such dialog is known, as in the agent, which has none.
    virtual bool Config();

    /// Both move nothing, on purpose: a dialog is given the action and writes the settings itself.
    void PropertiesToFormFields(TComponent& Form);
    void FormdFieldsToProperties(TComponent& Form);

    /// A new action of that class, with its defaults; null if the class is no action.
    [[nodiscard]] static std::unique_ptr<TPDFAction> CreateInstance(const QMetaObject& AClass);
};
