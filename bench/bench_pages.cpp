// Work on the pages of large documents, against programs that do the same:
//
//     bench_pages JOB [--rounds N] [--pages N]
//
//     text      one line of different text on each page, against qpdf --overlay with a prepared overlay,
//               mutool run and PyMuPDF; --pages 1000, 10000 (the default) or 100000
//     scans     the same on 300 scanned pages, 245 MB, against the same and a plain copy of the bytes
//     encrypt   256-bit AES on the scans, against qpdf
//     stamps    six texts in the margins of each page, all different, against qpdf --overlay with a prepared
//               overlay; growth and memory a page; --pages as above, both 1,000 and 10,000 without it
//     pages     delete 1,000 of 10,000 pages, extract 1,000, rotate all, against qpdf and mutool
//
// Inputs are made here. The sides take turns; medians and the largest peak of each are printed. None waits
// for the disk.
#include "Paired.h"
#include "base/PartFile.h"
#include "bates/BatesDictionary.h"
#include "engine/document/Document.h"
#include "engine/layers/LayerText.h"
#include "testing/SamplePdf.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <functional>
#include <random>

namespace {

struct TSide {
    QString Name;
    std::function<void()> Work;
};

/// Prints a line a side; ratios are of times within one round. Gives what our side took.
TFigure Compare(const QString& title, const QList<TSide>& sides, int rounds, const QString& output) {
    QList<QList<double>> seconds(sides.size());
    QList<double> peaks(sides.size(), 0);
    qint64 size = 0;
    for (int round = 0; round < rounds; ++round)
        for (qsizetype i = 0; i < sides.size(); ++i) {
            QFile::remove(output);
            const TFigure figure = Measure(sides[i].Work);
            seconds[i].append(figure.Seconds);
            peaks[i] = std::max(peaks[i], figure.PeakMiB);
            if (i == 0)
                size = QFileInfo(output).size();
            else if (!QFileInfo::exists(output))
                std::fprintf(stderr, "%s made nothing\n", qUtf8Printable(sides[i].Name));
        }
    std::printf("%s, %d rounds, medians; our result has %lld bytes\n", qUtf8Printable(title), rounds,
                static_cast<long long>(size));
    for (qsizetype i = 0; i < sides.size(); ++i) {
        QList<double> ratios;
        for (qsizetype round = 0; round < rounds; ++round)
            ratios.append(seconds[i][round] / seconds[0][round]);
        std::printf("  %-24s %8.0f ms   peak %7.1f MiB   %5.2f times ours\n", qUtf8Printable(sides[i].Name),
                    1000 * Median(seconds[i]), peaks[i], Median(ratios));
    }
    return {Median(seconds[0]), 0, peaks[0]};
}

void WriteText(const QString& path, const QByteArray& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write %s", qUtf8Printable(path));
}

/// Pages that are each one JPEG-like picture: bytes that don't compress.
void MakeScans(const QString& path, int pages, qsizetype bytesEach) {
    std::mt19937_64 random(1);
    QList<QByteArray> objects{"<< /Type /Catalog /Pages 2 0 R >>", {}};
    QByteArray kids;
    for (int i = 0; i < pages; ++i) {
        QByteArray data(bytesEach, Qt::Uninitialized);
        for (qsizetype at = 0; at + 8 <= bytesEach; at += 8) {
            const quint64 word = random();
            std::memcpy(data.data() + at, &word, sizeof word);
        }
        const auto number = [](qsizetype n) { return QByteArray::number(n) + " 0 R"; };
        const qsizetype first = objects.size() + 1;
        kids += number(first) + ' ';
        objects << "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents " + number(first + 1) +
                       " /Resources << /XObject << /Im0 " + number(first + 2) + " >> >> >>"
                << StreamOf("q 595 0 0 842 0 0 cm /Im0 Do Q")
                << StreamOf(data,
                            "/Type /XObject /Subtype /Image /Width 2480 /Height 3508 /BitsPerComponent 8 "
                            "/ColorSpace /DeviceGray /Filter /DCTDecode");
    }
    objects[1] = "<< /Type /Pages /Count " + QByteArray::number(pages) + " /Kids [" + kids + "] >>";
    WriteText(path, PdfOf(objects));
}

void PutText(const QString& input, const QString& output) {
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(input, {});
    for (int i = 0; i < document.GetPageCount(); ++i) {
        auto* text = new TZQPDFText(&document.Pages().getItem(i).Layers());
        text->SetPosition(TGPPointF::Create(36, 36));
        text->SetText(QStringLiteral("Exhibit %1 of today").arg(i + 1, 6, 10, QLatin1Char('0')));
    }
    document.SaveToPath(output, /*keepSource=*/true, /*takeName=*/false);
    std::_Exit(0); // as a run goes on with the next file while this one is torn down
}

void PutStamps(const QString& input, const QString& output) {
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(input, {});
    TZQPDFBatesDictionary store;
    store.CurrScheme.HeaderLeft = QStringLiteral("Exhibit [page+0:6]");
    store.CurrScheme.HeaderCenter = QStringLiteral("Case 7 / [page]");
    store.CurrScheme.HeaderRight = QStringLiteral("[page+100000:8]");
    store.CurrScheme.FooterLeft = QStringLiteral("Sheet [page]");
    store.CurrScheme.FooterCenter = QStringLiteral("[page] of [numpages]");
    store.CurrScheme.FooterRight = QStringLiteral("No. [page+500:7]");
    store.ApplySchemeToDocument(document, {});
    document.SaveToPath(output, /*keepSource=*/true, /*takeName=*/false);
    std::_Exit(0);
}

QByteArray StampedLine(int page) {
    return "BT /F1 12 Tf 36 795 Td (Exhibit " + QByteArray::number(page).rightJustified(6, '0') +
           " of today) Tj ET";
}

/// The six texts of PutStamps.
QByteArray StampedMargins(int page) {
    const auto padded = [page](int add, int digits) {
        return QByteArray::number(page + add).rightJustified(digits, '0');
    };
    const QByteArray number = QByteArray::number(page);
    return "BT /F1 12 Tf 72 809 Td (Exhibit " + padded(0, 6) + ") Tj ET BT /F1 12 Tf 260 809 Td (Case 7 / " +
           number + ") Tj ET BT /F1 12 Tf 470 809 Td (" + padded(100'000, 8) +
           ") Tj ET BT /F1 12 Tf 72 27 Td (Sheet " + number + ") Tj ET BT /F1 12 Tf 270 27 Td (" + number +
           " of 10000) Tj ET BT /F1 12 Tf 460 27 Td (No. " + padded(500, 7) + ") Tj ET";
}

/// The overlay that qpdf needs, with the same lines.
void MakeOverlay(const QString& path, int pages, QByteArray (&content)(int page) = StampedLine) {
    QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>", {}, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"};
    QByteArray kids;
    for (int i = 0; i < pages; ++i) {
        const QByteArray page = QByteArray::number(objects.size() + 1) + " 0 R ";
        kids += page;
        objects
            << "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Resources << /Font << /F1 3 0 R >> >> "
               "/Contents " +
                   QByteArray::number(objects.size() + 2) + " 0 R >>"
            << StreamOf(content(i + 1));
    }
    objects[1] = "<< /Type /Pages /Count " + QByteArray::number(pages) + " /Kids [" + kids + "] >>";
    WriteText(path, PdfOf(objects));
}

constexpr const char* MutoolScript = R"(
var doc = new PDFDocument(scriptArgs[0]);
var font = doc.addSimpleFont(new Font("Helvetica"), "Latin");
var n = doc.countPages();
for (var i = 0; i < n; ++i) {
    var page = doc.findPage(i);
    var number = ("000000" + (i + 1)).slice(-6);
    var stream = doc.addStream("q BT /MvF 12 Tf 36 795 Td (Exhibit " + number + " of today) Tj ET Q", null);
    var resources = page.get("Resources");
    var fonts = resources.get("Font");
    if (!fonts || fonts.isNull()) { fonts = doc.newDictionary(); resources.put("Font", fonts); }
    fonts.put("MvF", font);
    var contents = page.get("Contents");
    var all = doc.newArray();
    all.push(contents);
    all.push(stream);
    page.put("Contents", all);
}
doc.save(scriptArgs[1], "");
)";

constexpr const char* FitzScript = R"(
import sys, fitz
doc = fitz.open(sys.argv[1])
for i, page in enumerate(doc):
    page.insert_text((36, 47), "Exhibit %06d of today" % (i + 1), fontsize=12)
doc.save(sys.argv[2])
)";

QString Quoted(const QString& path) {
    return u'\'' + path + u'\'';
}

QList<TSide> TextSides(const QString& root, const QString& input, const QString& output) {
    const QString files = Quoted(input) + u' ' + Quoted(output);
    WriteText(root + "/text.js", MutoolScript);
    WriteText(root + "/text.py", FitzScript);
    return {{"ours", [=] { PutText(input, output); }},
            {"qpdf --overlay",
             [=] {
                 Become("qpdf " + Quoted(input) + " --overlay " + root + "/overlay.pdf -- " + Quoted(output));
             }},
            {"mutool run", [=] { Become("mutool run " + root + "/text.js " + files); }},
            {"PyMuPDF", [=] { Become("/usr/bin/python3 " + root + "/text.py " + files); }}};
}

void TextJob(const QString& root, int pages, int rounds) {
    const QString input = root + "/in.pdf";
    const QString output = root + "/out.pdf";
    static_cast<void>(Measure([&] {
        MakePdf(input, pages);
        MakeOverlay(root + "/overlay.pdf", pages);
    }));
    Compare(QStringLiteral("a line on each of %1 pages, %2 bytes").arg(pages).arg(QFileInfo(input).size()),
            TextSides(root, input, output), rounds, output);
}

struct TStampFigure {
    int Pages;
    TFigure Own;
};

TStampFigure StampPages(const QString& root, int pages, int rounds) {
    const QString input = root + "/in.pdf";
    const QString output = root + "/out.pdf";
    const QString plain = root + "/plain.pdf";
    MakePdf(input, pages);
    MakeOverlay(root + "/overlay.pdf", pages, StampedMargins);
    const auto own = [=] { PutStamps(input, output); };
    const auto overlay = [=] {
        Become("qpdf " + Quoted(input) + " --overlay " + root + "/overlay.pdf -- " + Quoted(output));
    };
    const TFigure figure = Compare(
        QStringLiteral("six texts on each of %1 pages, %2 bytes").arg(pages).arg(QFileInfo(input).size()),
        {{"ours", own}, {"qpdf --overlay", overlay}}, rounds, output);
    Measure(own);
    const qint64 stamped = QFileInfo(output).size();
    Measure(overlay);
    const qint64 overlaid = QFileInfo(output).size();
    Measure([=] { // what a save alone makes of the file
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(input, {});
        document.RotatePages({}, 0);
        document.SaveToPath(plain, /*keepSource=*/true, /*takeName=*/false);
        std::_Exit(0);
    });
    std::printf(
        "  %.0f pages a second; a page grows by %.0f bytes (%.0f beyond a plain save), with qpdf by %.0f\n",
        pages / figure.Seconds, double(stamped - QFileInfo(input).size()) / pages,
        double(stamped - QFileInfo(plain).size()) / pages,
        double(overlaid - QFileInfo(input).size()) / pages);
    return {pages, figure};
}

void StampsJob(const QString& root, const QList<int>& sizes, int rounds) {
    QList<TStampFigure> figures;
    for (const int pages : sizes)
        figures.append(StampPages(root, pages, rounds));
    const TStampFigure& first = figures.first();
    const TStampFigure& last = figures.last();
    if (last.Pages > first.Pages)
        std::printf("  a page of %d costs %.2f times one of %d and %.1f KiB of memory\n", last.Pages,
                    last.Own.Seconds / last.Pages / (first.Own.Seconds / first.Pages), first.Pages,
                    1024 * (last.Own.PeakMiB - first.Own.PeakMiB) / (last.Pages - first.Pages));
}

QString Scans(const QString& root) {
    constexpr int Pages = 300;
    constexpr qsizetype Bytes = 816'000;
    const QString input = root + "/scans.pdf";
    // In a process of its own: what this one holds counts as its children's peak.
    static_cast<void>(Measure([&] { MakeScans(input, Pages, Bytes); }));
    return input;
}

void ScansJob(const QString& root, int rounds) {
    const QString input = Scans(root);
    const QString output = root + "/out.pdf";
    MakeOverlay(root + "/overlay.pdf", 300);
    QList<TSide> sides = TextSides(root, input, output);
    sides.append({"cp --reflink=never",
                  [=] { Become("cp --reflink=never " + Quoted(input) + u' ' + Quoted(output)); }});
    Compare(QStringLiteral("a line on each of 300 scans, %1 bytes").arg(QFileInfo(input).size()), sides,
            rounds, output);
}

void EncryptJob(const QString& root, int rounds) {
    const QString input = Scans(root);
    const QString output = root + "/out.pdf";
    const auto own = [=] {
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(input, {});
        auto* handler = new TPDFPasswordSecurityHandler(nullptr);
        handler->StreamCipher = handler->StringCipher = TPDFPasswordSecurityHandler::CipherAES256;
        handler->SetOwnerPassword(QStringLiteral("owner"));
        handler->SetUserPassword(QStringLiteral("user"));
        document.SetSecurityHandler(handler);
        document.Encrypt();
        document.SaveToPath(output, /*keepSource=*/true, /*takeName=*/false);
        std::_Exit(0);
    };
    Compare("256-bit AES on 300 scans",
            {{"ours", own},
             {"qpdf --encrypt",
              [=] { Become("qpdf --encrypt user owner 256 -- " + Quoted(input) + u' ' + Quoted(output)); }}},
            rounds, output);
}

void PagesJob(const QString& root, int pages, int rounds) {
    const QString input = root + "/in.pdf";
    const QString output = root + "/out.pdf";
    const QString files = Quoted(input) + u' ' + Quoted(output);
    static_cast<void>(Measure([&] { MakePdf(input, pages); }));
    const auto own = [=](const std::function<void(TZQPDFDocument&)>& work) {
        return [=] {
            TZQPDFDocument document(nullptr);
            document.OpenFromFile(input, {});
            work(document);
            document.SaveToPath(output, /*keepSource=*/true, /*takeName=*/false);
            std::_Exit(0);
        };
    };
    Compare(QStringLiteral("delete 1,000 of %1 pages").arg(pages),
            {{"ours", own([](TZQPDFDocument& document) { document.DeletePageRange("2001-3000"); })},
             {"qpdf --pages",
              [=] { Become("qpdf " + Quoted(input) + " --pages . 1-2000,3001-z -- " + Quoted(output)); }},
             {"mutool clean", [=] { Become("mutool clean " + files + " 1-2000,3001-N"); }}},
            rounds, output);
    const auto extract = [=] {
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(input, {});
        TZQPDFDocument target(nullptr);
        target.ImportPagesFrom(document, "2001-3000", -1);
        target.DeletePage(0);
        target.SaveCopyToFile(output, /*keepSource=*/true, /*takeName=*/false);
        std::_Exit(0);
    };
    Compare(QStringLiteral("extract 1,000 of %1 pages").arg(pages),
            {{"ours", extract},
             {"qpdf --pages",
              [=] { Become("qpdf --empty --pages " + Quoted(input) + " 2001-3000 -- " + Quoted(output)); }},
             {"mutool clean", [=] { Become("mutool clean " + files + " 2001-3000"); }}},
            rounds, output);
    Compare(QStringLiteral("rotate all of %1 pages").arg(pages),
            {{"ours", own([](TZQPDFDocument& document) { document.RotatePages({}, 90); })},
             {"qpdf --rotate", [=] { Become("qpdf --rotate=+90 " + files); }}},
            rounds, output);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const auto option = [&](const char* name, int otherwise) {
        const qsizetype at = arguments.indexOf(QLatin1String(name));
        return at > 0 ? std::max(1, arguments.value(at + 1).toInt()) : otherwise;
    };
    SetFileSync(FileSync::Off);
    const QTemporaryDir root;
    const QString job = arguments.value(1);
    const int rounds = option("--rounds", 5);
    if (job == u"text")
        TextJob(root.path(), option("--pages", 10'000), rounds);
    else if (job == u"scans")
        ScansJob(root.path(), rounds);
    else if (job == u"stamps")
        StampsJob(root.path(),
                  arguments.contains("--pages") ? QList<int>{option("--pages", 1000)}
                                                : QList<int>{1000, 10'000},
                  rounds);
    else if (job == u"encrypt")
        EncryptJob(root.path(), rounds);
    else if (job == u"pages")
        PagesJob(root.path(), option("--pages", 10'000), rounds);
    else
        return std::fprintf(stderr,
                            "usage: bench_pages text|scans|stamps|encrypt|pages [--rounds N] [--pages N]\n"),
               2;
    return 0;
}
