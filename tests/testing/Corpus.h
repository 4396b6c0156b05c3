#pragma once
// Documents by many producers, each with the class that says what must become of it: small ones that are made
// here, and the corpus where it lies beside the working copy, of which it is no part.
#include "base/Text.h"

#include <QList>
#include <QStringList>

struct TCorpusFile {
    string Path;
    string Name; ///< its place in the corpus, made one name
    int Pages = 0;
    string Class;     ///< "ok", "damaged-recoverable", "damaged", "needs-password" or "not-pdf"
    int QpdfExit = 0; ///< status of `qpdf --check` on it
};

[[nodiscard]] bool HasCorpus();
/// The files of these classes; of all if none is named. There is at least one of each class.
[[nodiscard]] QList<TCorpusFile> CorpusFiles(const QStringList& classes = {});
