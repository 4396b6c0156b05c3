#include "actions/ActionClasses.h"

#include "actions/ActionRegistry.h"
#include "actions/UnknownAction.h"

void RegisterActionClasses() {
    for (const TPDFActionManager::TRegisteredAction& row : RegisteredActions())
        Reflection::RegisterClass(*row.cl);
    Reflection::RegisterClass(TPDFUnknownAction::staticMetaObject);
}
