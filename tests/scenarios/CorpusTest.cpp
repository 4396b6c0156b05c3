// The run over real documents by many producers: each ends up where its class belongs. The corpus lies beside
// the project and isn't part of it; without it there is nothing to look at.
#include "scenarios/PlayedAgent.h"

#include <QRegularExpression>

#include <chrono>

namespace {

struct TCorpusFile {
    string Path;
    string Name; // its place in the corpus, made one name
    int Pages = 0;
    string Class;
    int QpdfCheck = 0; // exit status of qpdf --check on the source
};

QList<TCorpusFile> CorpusFiles() {
    QFile manifest(QStringLiteral(MORVANE_CORPUS "/MANIFEST.tsv"));
    if (!manifest.open(QIODevice::ReadOnly))
        return {};
    QList<TCorpusFile> files;
    const QStringList lines = QString::fromUtf8(manifest.readAll()).split(u'\n');
    const QStringList columns = lines.value(0).split(u'\t');
    for (const string& line : lines.mid(1)) {
        const QStringList cells = line.split(u'\t');
        const auto cell = [&](const char* column) {
            return cells.value(columns.indexOf(QLatin1String(column)));
        };
        if (cells.size() < columns.size())
            continue;
        const auto check = QRegularExpression("qpdf\\D*(\\d)").match(cell("checks"));
        files.append({QStringLiteral(MORVANE_CORPUS "/") + cell("path"), cell("path").replace(u'/', u'_'),
                      cell("pages").toInt(), cell("expected_class"), check.captured(1).toInt()});
    }
    return files;
}

} // namespace

TEST(Corpus, EveryFileEndsWhereItsClassBelongs) {
    const QList<TCorpusFile> files = CorpusFiles();
    if (files.isEmpty())
        GTEST_SKIP() << "no corpus beside the project";
    const TConfiguredWorkspace workspace;
    for (const TCorpusFile& file : files)
        QFile::copy(file.Path, workspace.Path("in/" + file.Name));
    const auto begin = std::chrono::steady_clock::now();
    PlayTicks(workspace, 1);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(seconds.count(), 10.0 * double(files.size()));
    const string log =
        QString::fromUtf8(workspace.Read("c/logs/" + TPlayedClock().Now().toString("yyyy.MM.dd") + ".txt"));

    for (const TCorpusFile& file : files) {
        SCOPED_TRACE(file.Path.toStdString() + ", " + file.Class.toStdString());
        if (file.Class == "needs-password") {
            EXPECT_TRUE(workspace.Has("in/" + file.Name));
        } else if (file.Class == "ok" ||
                   (file.Class == "damaged-recoverable" && !workspace.Has("in/Error/" + file.Name))) {
            EXPECT_TRUE(workspace.Has("in/process/" + file.Name));
            const string result = workspace.Path("in/output/" + file.Name);
            const int check = RunProgram("qpdf", {"--check", result}).Exit;
            EXPECT_TRUE(check == 0 || (check == 3 && file.QpdfCheck == 3)) << "qpdf --check: " << check;
            EXPECT_EQ(RunProgram("qpdf", {"--show-npages", result}).Out.trimmed().toInt(), file.Pages);
        } else {
            EXPECT_TRUE(workspace.Has("in/Error/" + file.Name));
        }
    }
    EXPECT_EQ(log.count("password protected"),
              std::count_if(files.begin(), files.end(),
                            [](const TCorpusFile& file) { return file.Class == "needs-password"; }));
}
