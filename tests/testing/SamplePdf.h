#pragma once
// Small PDFs for tests and benchmarks, written by hand so that no code under test makes its own input.
#include "base/Text.h"

struct TSamplePdf {
    string UserPassword = {}; ///< either password protects the file (AES, 256 bits)
    string OwnerPassword = {};
    string Title = {}; ///< entry of the document information; nothing if empty
};

/// A document of A4 pages, each showing "Page N" as text. Replaces what is there.
void MakePdf(const string& path, int pages, const TSamplePdf& options = {});
