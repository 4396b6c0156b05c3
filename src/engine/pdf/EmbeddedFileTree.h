#pragma once
// The name tree of the files attached to a document (ISO 32000-1, 7.7.4 and 7.9.6).
#include "engine/pdf/Qpdf.h"

struct TEmbeddedFile {
    std::string Key; ///< the bytes that the tree is sorted by
    QPDFObjectHandle Spec;
};

/// The Filespec dictionaries that can be reached, however damaged the tree is. One without a key has an empty
/// one.
[[nodiscard]] std::vector<TEmbeddedFile> ReadEmbeddedFiles(QPDF& pdf);

/// The name that readers show of an attached file (ISO 32000-1, table 44).
[[nodiscard]] string ShownName(const TEmbeddedFile& file);

/// Builds the tree anew.
void WriteEmbeddedFiles(QPDF& pdf, std::vector<TEmbeddedFile> files);
