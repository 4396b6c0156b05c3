#include "actions/ActionManager.h"

#include "actions/ActionRegistry.h"
#include "actions/ConfigurationPaths.h"
#include "base/Paths.h"
#include "base/UniqueName.h"
#include "xml/Xmlserial.h"

string TPDFActionManager::UniqueFileName(const string& fn) {
    return ::UniqueFileName(fn);
}

Integer TPDFActionManager::IndexOf(const string& actionName) const {
    for (int i = 0; i < FActions.Count(); ++i)
        if (SameText(FActions[i]->FName, actionName))
            return i;
    return -1;
}

TPDFActionList& TPDFActionManager::AddAction(const string& actionName, const string& description) {
    TPDFActionList* list = FActions.Add(std::make_unique<TPDFActionList>());
    list->FName = actionName;
    list->FDescription = description;
    return *list;
}

bool TPDFActionManager::DeleteAction(const string& actionName) {
    const Integer index = IndexOf(actionName);
    if (index < 0)
        return false;
    FActions.Delete(index);
    return true;
}

bool TPDFActionManager::Execute(const string& actionName, TZQPDFDocument& Document) {
    for (int i = 0; i < FActions.Count(); ++i)
        if (SameText(FActions[i]->FName, actionName))
            FActions[i]->FActions->Execute(Document);
    return false;
}

void TPDFActionManager::Clear() {
    FActions.Clear();
}

void TPDFActionManager::Load(const string& Filename) {
    const string path = Filename.isEmpty() ? ActionsFile() : Filename;
    Clear();
    if (FileExists(path))
        XMLDeserialize(*this, path, QString());
}

void TPDFActionManager::Save() {
    XMLSerialize(*this, ActionsFile(), /*compact=*/false, QString());
}

TPDFActionManager& GetActionManager() {
    static TPDFActionManager& manager = []() -> TPDFActionManager& {
        auto* made = new TPDFActionManager; // lives to the end of the process
        made->Load(QString());
        CollectActionCategories();
        return *made;
    }();
    return manager;
}
