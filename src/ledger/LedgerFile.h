#pragma once
// The ledger's file, as far as it isn't SQLite's affair.
#include "base/Text.h"

/// Makes the file where it is missing, empty, for this user alone (mode 0600), and its folder likewise
/// (0700). Raises EFileError.
void MakeLedgerFile(const string& path);
