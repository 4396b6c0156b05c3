#pragma once
// What dead runs left of a watched folder's files, on the disk and in the ledger.
#include "agent/AgentLedger.h"
#include "base/Folder.h"

#include <QStringList>

class TPDFWatchedFolder;

/// Gives back what dead runs claimed in the folder, and removes their temporaries; makes nothing. Returns the
/// names that were given back. Raises EFileError.
QStringList SweepFolder(const string& path);

/// Deals with claims in the ledger of dead agents whose file has gone its way already: numbers that a result
/// bears are given, others are void, and what is missing is the file's record. A file that is still to come
/// back, or that lies in the folder, is left for its turn. Raises ELedger and EFileError.
void SettleLeftClaims(TAgentLedger& ledger, const TPDFWatchedFolder& folder);
