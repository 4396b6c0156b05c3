#pragma once
// Files that nobody made for these tests.
#include "engine/PdfJudges.h"
#include "testing/Corpus.h"

/// Pages that libqpdf finds: none where the page tree itself is lost, and other readers guess.
inline bool HasReadableTree(const TCorpusFile& file) {
    return RunProgram("qpdf", {"--show-npages", file.Path}).Out.trimmed() != "0";
}

struct TCorpus : testing::Test {};
