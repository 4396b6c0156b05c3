#pragma once
// The catalogue: which actions there are, with what a host shows of them. The run of the folders doesn't need
// it; it knows actions by their classes.
#include "actions/ActionManager.h"

#include <QStringList>

/// The rows in order of registration, the agent's own 29 first. A new action is one row in
/// ActionRegistry.cpp.
[[nodiscard]] QList<TPDFActionManager::TRegisteredAction>& RegisteredActions();

/// The categories of the rows in order of their first appearance, each once; empty before the first call of
/// GetActionManager.
[[nodiscard]] QStringList& ActionCategories();

/// Appends a row. To be called before the manager is first asked for, and before RegisterActionClasses
/// (actions/ActionClasses.h), which makes the classes of all rows known to files.
void RegisterAction(const QMetaObject& cl, const string& title, const string& category, Integer imageIndex);

/// Appends the categories that ActionCategories doesn't have yet, whatever their case.
void CollectActionCategories();
