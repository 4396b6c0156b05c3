#include "actions/Action.h"

#include "actions/ActionDocument.h"
#include "actions/Binding.h"
#include "actions/ModalDialog.h"
#include "base/Exceptions.h"

namespace {
constexpr int OkResult = 1;
}

TPDFAction::TPDFAction() : TComponent(nullptr) {}

Cardinal TPDFAction::Execute(TZQPDFDocument& Document) {
    InvokeByClassName(*this, TJSPDFDocument::staticMetaObject, [&Document]() -> QObject& {
        TJSPDFDocument& actionDocument = ActionDocument();
        actionDocument.SetDocument(&Document);
        return actionDocument;
    });
    return 0;
}

bool TPDFAction::Config() {
    string dialogName = Reflection::ClassName(*metaObject());
    const string prefix = QStringLiteral("TPDFAction");
    if (const qsizetype at = dialogName.indexOf(prefix); at >= 0)
        dialogName.replace(at, prefix.size(), QStringLiteral("TFrmPDF"));
    std::unique_ptr<QObject> made;
    if (const QMetaObject* type = Reflection::FindClass(dialogName))
        made.reset(Reflection::Construct(
            *type, {QVariant::fromValue<QObject*>(nullptr), QVariant::fromValue<QObject*>(this)}));
    auto* dialog = qobject_cast<TModalDialog*>(made.get());
    if (dialog == nullptr)
        throw Exception(QStringLiteral("[TPDFAction.Config]: Class not found ") + dialogName);
    return dialog->ShowModal() == OkResult;
}

void TPDFAction::PropertiesToFormFields(TComponent& /*form*/) {}
void TPDFAction::FormdFieldsToProperties(TComponent& /*form*/) {}

std::unique_ptr<TPDFAction> TPDFAction::CreateInstance(const QMetaObject& AClass) {
    if (!AClass.inherits(&TPDFAction::staticMetaObject))
        return nullptr;
    return std::unique_ptr<TPDFAction>(static_cast<TPDFAction*>(Reflection::Construct(AClass)));
}
