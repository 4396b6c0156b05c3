// How fast a pass is: 1,000 small files through one folder with one rotate action, against a shell loop over
// the qpdf program doing the same, and a document of 10,000 pages against qpdf doing only a copy.
//
// And small files stamped with Bates lines, with sync, on a disk and in memory: by the agent alone and by 1,
// 2 and 4 workers.
//
//     run_throughput [--rounds N] [--files N] [--only disk|memory|ledger|alone] [--workers 0,1,2,4]
//
// "disk" and "memory" are the workers' two places, "ledger" is what it costs to keep one, "alone" is what the
// agent does without workers.
// The two sides of each comparison take turns in one run; medians are printed. "without sync" leaves out the
// waits for the disk, which the loop doesn't do either.
#include "Paired.h"
#include "actions/ActionClasses.h"
#include "agent/AgentLedger.h"
#include "agent/FoldersThread.h"
#include "base/PartFile.h"
#include "engine/document/Document.h"
#include "testing/PlayedHost.h"
#include "testing/SamplePdf.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int SmallFiles = 1000;
constexpr int ManyPages = 10'000;

void WriteText(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
}

void FillFolder(const QString& samples, const QString& folder) {
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    Shell("cp " + samples + "/*.pdf " + folder);
}

void RunPass(const QString& root, FileSync sync, int workers = 0, TAgentLedger* ledger = nullptr) {
    SetFileSync(sync);
    RegisterActionClasses();
    TPlayedClock clock;
    TPlainFiles files;
    TNotedHint hint;
    TAgentStatus status;
    TRunSettings settings;
    settings.Workers = {.Count = workers,
                        .Program =
                            QCoreApplication::applicationDirPath() + QStringLiteral("/morvane-worker")};
    TWatchedFoldersThread thread(root + "/c/", {clock, files, hint, status, {}, nullptr, ledger}, settings);
    clock.Play(1);
}

void WriteConfiguration(const QString& root, const QByteArray& actions) {
    QDir().mkpath(root + "/c");
    WriteText(root + "/c/watchedfolders.xml",
              "<WatchedFolder><Folders><Folder><Name>" + root.toUtf8() +
                  "/in</Name><Enabled>true</Enabled><CheckEvery>1</CheckEvery><Action>r</Action></Folder>"
                  "</Folders></WatchedFolder>");
    WriteText(root + "/c/actions.xml", "<ActionManager><ManagerActions><ActionList><Name>r</Name><Actions>" +
                                           actions +
                                           "</Actions></ActionList></ManagerActions></ActionManager>");
}

void SmallFilesBench(const QString& root, int rounds) {
    QDir().mkpath(root + "/samples");
    for (int i = 0; i < SmallFiles; ++i)
        MakePdf(QStringLiteral("%1/samples/file %2.pdf").arg(root, QString::number(i)), 1 + i % 3);
    const QString folder = root + "/in";
    WriteConfiguration(root, "<Action Class=\"TPDFActionRotatePages\"/>");

    QList<double> unsynced, synced, loop, ratios, ownCpu, loopCpu;
    double ownPeak = 0;
    for (int round = 0; round < rounds; ++round) {
        FillFolder(root + "/samples", folder);
        const TFigure own = Measure([&] { RunPass(root, FileSync::Off); });
        FillFolder(root + "/samples", folder);
        const TFigure shell = Measure([&] {
            Shell("cd " + folder +
                  " && mkdir output process && for f in *.pdf; do "
                  "qpdf --rotate=+90 \"$f\" \"output/$f\" && cp \"$f\" \"process/$f\" && rm \"$f\"; done");
        });
        FillFolder(root + "/samples", folder);
        const TFigure durable = Measure([&] { RunPass(root, FileSync::On); });
        const auto done = QDir(folder + "/output").entryList(QDir::Files).size();
        if (done != SmallFiles)
            std::fprintf(stderr, "only %lld results\n", static_cast<long long>(done));
        unsynced.append(own.Seconds);
        loop.append(shell.Seconds);
        synced.append(durable.Seconds);
        ratios.append(shell.Seconds / own.Seconds);
        ownCpu.append(own.CpuSeconds);
        loopCpu.append(shell.CpuSeconds);
        ownPeak = std::max(ownPeak, own.PeakMiB);
    }
    std::printf("%d files of 1 to 3 pages, one rotate action, %d rounds, medians\n", SmallFiles, rounds);
    const auto row = [](const char* name, double seconds) {
        std::printf("  %-18s %8.0f files/s", name, SmallFiles / seconds);
    };
    row("pass without sync", Median(unsynced));
    std::printf("   CPU %.0f us a file   peak %.1f MiB\n", 1e6 * Median(ownCpu) / SmallFiles, ownPeak);
    row("pass with sync", Median(synced));
    row("\n  shell loop, qpdf", Median(loop));
    std::printf("   CPU %.0f us a file   the pass without sync is %.1f times as fast\n",
                1e6 * Median(loopCpu) / SmallFiles, Median(ratios));
}

/// Samples and a list that stamps six Bates texts on each page.
void PrepareStamping(const QString& root, int files) {
    WriteConfiguration(
        root, "<Action Class=\"TPDFActionAddBatesNumbering\"><bates><HeaderLeft>[filename]</HeaderLeft>"
              "<HeaderRight>Exhibit [page+100:6]</HeaderRight><FooterLeft>[date]</FooterLeft>"
              "<FooterRight>[page] of [numpages]</FooterRight></bates></Action>");
    QDir().mkpath(root + "/samples");
    for (int i = 0; i < files; ++i)
        MakePdf(QStringLiteral("%1/samples/file %2.pdf").arg(root, QString::number(i)), 1 + i % 3);
}

/// With a path, there is a ledger, in which all is when it ends.
TFigure StampAll(const QString& root, int files, int workers, const QString& ledger = {}) {
    FillFolder(root + "/samples", root + "/in");
    const TFigure figure = Measure([&] {
        std::optional<TAgentLedger> kept;
        if (!ledger.isEmpty()) {
            TEditorSettings settings;
            settings.Ledger = ledger;
            kept.emplace(settings);
        }
        RunPass(root, FileSync::On, workers, kept ? &*kept : nullptr);
    });
    const auto done = QDir(root + "/in/output").entryList(QDir::Files).size();
    if (done != files)
        std::fprintf(stderr, "only %lld results\n", static_cast<long long>(done));
    return figure;
}

void PrintStamped(const QString& name, int files, const QList<TFigure>& figures) {
    QList<double> seconds, cpu, peak;
    for (const TFigure& figure : figures) {
        seconds.append(figure.Seconds);
        cpu.append(figure.CpuSeconds);
        peak.append(figure.PeakMiB);
    }
    std::printf("  %s %8.0f files/s   CPU %.0f us a file   peak of a process %.1f MiB\n", qPrintable(name),
                files / Median(seconds), 1e6 * Median(cpu) / files, Median(peak));
}

void WorkersBench(const QString& root, const char* place, const QList<int>& counts, int files, int rounds) {
    PrepareStamping(root, files);
    QMap<int, QList<TFigure>> figures;
    for (int round = 0; round < rounds; ++round)
        for (const int workers : counts)
            figures[workers].append(StampAll(root, files, workers));
    std::printf("%d files of 1 to 3 pages, six Bates texts a page, with sync, %s, %d rounds, medians\n",
                files, place, rounds);
    for (const int workers : counts)
        PrintStamped(QStringLiteral("%1 workers").arg(workers), files, figures[workers]);
}

void LedgerBench(const QString& root, const QList<int>& counts, int files, int rounds) {
    PrepareStamping(root, files);
    std::printf("%d files as above, in memory, without and with a ledger there, %d rounds, medians\n", files,
                rounds);
    for (const int workers : counts) {
        QList<TFigure> without, with;
        QList<double> ratios;
        for (int round = 0; round < rounds; ++round) {
            without.append(StampAll(root, files, workers));
            with.append(StampAll(root, files, workers,
                                 root + QStringLiteral("/ledger-%1-%2.sqlite").arg(workers).arg(round)));
            ratios.append(with.last().Seconds / without.last().Seconds);
        }
        PrintStamped(QStringLiteral("%1 workers, without").arg(workers), files, without);
        PrintStamped(QStringLiteral("%1 workers, with   ").arg(workers), files, with);
        std::printf("  %d workers: with the ledger %.3f times as long\n", workers, Median(ratios));
    }
}

void LargeFileBench(const QString& root, int rounds) {
    const QString source = root + "/large.pdf";
    MakePdf(source, ManyPages);
    QList<double> own, copy, ratios;
    double ownPeak = 0, copyPeak = 0;
    for (int round = 0; round < rounds; ++round) {
        const TFigure a = Measure([&] {
            SetFileSync(FileSync::Off);
            TZQPDFDocument document(nullptr);
            document.OpenFromFile(source, {});
            document.RotatePages({}, 90);
            document.SaveToPath(root + "/own.pdf", /*keepSource=*/true, /*takeName=*/false);
        });
        const TFigure b = Measure([&] {
            ::execlp("qpdf", "qpdf", source.toUtf8().constData(), (root + "/copy.pdf").toUtf8().constData(),
                     nullptr);
        });
        own.append(a.Seconds);
        copy.append(b.Seconds);
        ratios.append(a.Seconds / b.Seconds);
        ownPeak = std::max(ownPeak, a.PeakMiB);
        copyPeak = std::max(copyPeak, b.PeakMiB);
    }
    std::printf("%d pages, %d rounds, medians\n", ManyPages, rounds);
    std::printf("  open, rotate all, save  %6.0f ms   peak %.1f MiB\n", 1000 * Median(own), ownPeak);
    std::printf("  qpdf, plain copy        %6.0f ms   peak %.1f MiB   ratio %.2f\n", 1000 * Median(copy),
                copyPeak, Median(ratios));
}

/// What stands behind the option, or the other.
QString ValueOf(const char* option, const QString& otherwise) {
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype at = arguments.indexOf(QLatin1String(option));
    return at > 0 ? arguments.value(at + 1) : otherwise;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int rounds = std::max(1, ValueOf("--rounds", "5").toInt());
    const int files = std::max(1, ValueOf("--files", QString::number(SmallFiles)).toInt());
    QList<int> counts;
    for (const QString& count : ValueOf("--workers", "0,1,2,4").split(','))
        counts.append(count.toInt());
    const QString only = ValueOf("--only", {});
    const auto wanted = [&](const char* part) { return only.isEmpty() || only == QLatin1String(part); };
    const QTemporaryDir root;
    if (wanted("disk"))
        WorkersBench(root.path() + "/workers", "in the temporary folder", counts, files, rounds);
    if (const QTemporaryDir memory("/dev/shm/morvane-XXXXXX"); memory.isValid() && wanted("memory"))
        WorkersBench(memory.path(), "in memory", counts, files, rounds);
    if (const QTemporaryDir memory("/dev/shm/morvane-XXXXXX"); memory.isValid() && wanted("ledger"))
        LedgerBench(memory.path(), counts, files, rounds);
    if (!wanted("alone"))
        return 0;
    SmallFilesBench(root.path(), rounds);
    LargeFileBench(root.path(), rounds);
    return 0;
}
