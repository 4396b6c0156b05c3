#include "testing/Corpus.h"

#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

namespace {

QList<TCorpusFile> MakeFiles(const TWorkspace& files) {
    QList<TCorpusFile> made;
    const auto add = [&](const char* name, int pages, const char* type, int qpdfExit = 0) {
        const string file = QLatin1String(name);
        made.append({files.Path(file), "made_" + file, pages, type, qpdfExit});
        return made.last().Path;
    };
    MakePdf(add("plain.pdf", 3, "ok"), 3, {.Title = "Plain", .Outlines = true, .Links = true});
    MakePdf(add("turned and cropped.pdf", 2, "ok"), 2,
            {.PageEntries = "/Rotate 90 /CropBox [40 30 540 800]"});
    add("signed.pdf", 1, "ok");
    files.Write("signed.pdf", SignedPdf());
    add("table elsewhere.pdf", 4, "damaged-recoverable", 3);
    files.Write("table elsewhere.pdf", SamplePdf(4).replace("startxref\n", "startxref\n1"));
    add("cut short.pdf", 0, "damaged", 2);
    files.Write("cut short.pdf", SamplePdf(2).left(200));
    MakePdf(add("protected.pdf", 2, "needs-password", 2), 2,
            {.UserPassword = "secret", .OwnerPassword = "owner"});
    add("text.pdf", 0, "not-pdf", 2);
    files.Write("text.pdf", "A text under a wrong name.\n");
    return made;
}

QList<TCorpusFile> ReadManifest() {
    QFile manifest(QStringLiteral(CORPUS_FOLDER "/MANIFEST.tsv"));
    if (!manifest.open(QIODevice::ReadOnly))
        return {};
    QList<TCorpusFile> files;
    const QStringList lines = QString::fromUtf8(manifest.readAll()).split(u'\n', Qt::SkipEmptyParts);
    const QStringList columns = lines[0].split(u'\t');
    for (const QString& line : lines.mid(1)) {
        const QStringList row = line.split(u'\t');
        const auto column = [&](const char* name) { return row.value(columns.indexOf(QLatin1String(name))); };
        const string path = column("path");
        files.append({QStringLiteral(CORPUS_FOLDER "/") + path, string(path).replace(u'/', u'_'),
                      column("pages").toInt(), column("expected_class"),
                      column("checks").mid(int(qstrlen("qpdf=")), 1).toInt()});
    }
    return files;
}

} // namespace

bool HasCorpus() {
    return QFile::exists(QStringLiteral(CORPUS_FOLDER "/MANIFEST.tsv"));
}

QList<TCorpusFile> CorpusFiles(const QStringList& classes) {
    static const TWorkspace workspace;
    static const QList<TCorpusFile> all = MakeFiles(workspace) + ReadManifest();
    QList<TCorpusFile> files;
    for (const TCorpusFile& file : all)
        if (classes.isEmpty() || classes.contains(file.Class))
            files.append(file);
    return files;
}
