#pragma once
// What is wrong with watched folders, beyond their form: folders that can't be served, and lists that don't
// exist.
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "apps/ctl/lint/LintedFile.h"

/// `file` is the one that `folders` was read from. Without a manager its lists aren't known.
void LintFolders(TLintedFile& file, const TPDFWatchedFolders& folders, const TPDFActionManager* manager);
