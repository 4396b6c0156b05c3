#pragma once
// A file's outcome as the ledger keeps it.
#include "agent/Job.h"
#include "ledger/FileRecord.h"

/// As folders stand in the ledger: the path that is configured, without detours, with a delimiter at its end.
[[nodiscard]] string RecordedFolder(const string& path);

/// `steady` is the time by the steady clock, by which the job has begun, and `now` that of day, in ms.
[[nodiscard]] TFileRecord RecordOf(const TJob& job, const string& folder, qint64 steady, qint64 now);

[[nodiscard]] TRecordReason RecordedReason(const TReason& reason);
