#pragma once
// The text beside a failed file that says why, for people who look into Error/ and into nothing else.
#include "base/Folder.h"
#include "work/Outcome.h"

/// Of the file that lies there as `name`: "a.pdf.reason.txt".
[[nodiscard]] string ReasonFileName(const string& name);

/// Never raises: it's a help, and fails nothing.
void WriteReasonFile(const TFolderPtr& folder, const string& name, const QList<TReason>& reasons) noexcept;
