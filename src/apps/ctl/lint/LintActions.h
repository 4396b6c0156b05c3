#pragma once
// What is wrong with action lists, beyond their form: actions that always fail or do nothing, values that an
// action refuses, files that don't exist, scripts that don't compile.
#include "actions/ActionManager.h"
#include "apps/ctl/lint/LintedFile.h"

/// `file` is the one that `manager` was read from.
void LintLists(TLintedFile& file, TPDFActionManager& manager);
