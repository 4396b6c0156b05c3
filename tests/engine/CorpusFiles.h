#pragma once
// Files that nobody made for us.
#include "engine/PdfJudges.h"

struct TCorpusFile {
    string Path;
    int Pages = 0;
    string Class;
    int QpdfExit = 0;
};

/// The corpus lies beside the working copy where there is one.
inline std::vector<TCorpusFile> CorpusFiles(const QStringList& classes) {
    const string folder = QStringLiteral(CORPUS_FOLDER "/");
    std::vector<TCorpusFile> files;
    QFile manifest(folder + QStringLiteral("MANIFEST.tsv"));
    if (!manifest.open(QIODevice::ReadOnly))
        return files;
    const QStringList lines = QString::fromUtf8(manifest.readAll()).split(u'\n', Qt::SkipEmptyParts);
    const QStringList columns = lines[0].split(u'\t');
    for (const QString& line : lines.mid(1)) {
        const QStringList row = line.split(u'\t');
        const auto column = [&](const char* name) {
            return row.value(int(columns.indexOf(QLatin1String(name))));
        };
        if (classes.contains(column("expected_class")))
            files.push_back({folder + column("path"), column("pages").toInt(), column("expected_class"),
                             column("checks").mid(5, 1).toInt()});
    }
    return files;
}

/// Pages that libqpdf finds: none where the page tree itself is lost, and other readers guess.
inline bool HasReadableTree(const TCorpusFile& file) {
    return RunProgram(QStringLiteral("qpdf"), {QStringLiteral("--show-npages"), file.Path}).Out.trimmed() !=
           "0";
}

struct TCorpus : testing::Test {
    void SetUp() override {
        if (!QFileInfo::exists(QStringLiteral(CORPUS_FOLDER "/MANIFEST.tsv")))
            GTEST_SKIP() << "no corpus at " CORPUS_FOLDER;
    }
};
