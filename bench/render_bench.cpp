// One page of a large scan as a PNG file, against the pdftoppm program: 300 pages of about 0.8 MB each.
//
//     bench_render [--rounds N]
//
// The sides take turns; medians are printed.
#include "base/Exceptions.h"
#include "engine/control/Editor.h"
#include "engine/document/Document.h"
#include "testing/SamplePdf.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <sys/resource.h>

namespace {

constexpr int Pages = 300;
constexpr int Page = 150;
constexpr int Dpi = 100;

/// Grainy paper with lines of grey blobs for words, as a scanner at 200 dots per inch delivers it.
QByteArray Scan(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    std::mt19937 random(1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool ink = y / 20 % 2 == 0 && (x / 9 * 7 + y / 40 * 13) % 11 < 6 && (x + y / 3) % 9 < 5;
            const int grain = int(random() % 32);
            const int grey = ink ? 40 + grain : 220 + grain;
            image.setPixel(x, y, qRgb(grey, grey, grey));
        }
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", 55);
    return data;
}

QByteArray LargeScan() {
    constexpr int Width = 1654;
    constexpr int Height = 2339;
    const QByteArray jpeg = Scan(Width, Height);
    QList<QByteArray> objects{"<< /Type /Catalog /Pages 2 0 R >>", {}};
    QByteArray kids;
    for (int i = 0; i < Pages; ++i) {
        const auto object = [&](int k) { return QByteArray::number(3 + 3 * i + k) + " 0 R"; };
        kids += object(0) + ' ';
        objects << "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents " + object(1) +
                       " /Resources << /XObject << /S " + object(2) + " >> >> >>"
                << StreamOf("595 0 0 842 0 0 cm /S Do")
                << StreamOf(jpeg, "/Subtype /Image /Width " + QByteArray::number(Width) + " /Height " +
                                      QByteArray::number(Height) +
                                      " /BitsPerComponent 8 /ColorSpace /DeviceRGB /Filter /DCTDecode");
    }
    objects[1] = "<< /Type /Pages /Count " + QByteArray::number(Pages) + " /Kids [" + kids + "] >>";
    return PdfOf(objects);
}

/// Of this program and of those that it has waited for.
double ProcessorMilliseconds() {
    double sum = 0;
    for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& t : {usage.ru_utime, usage.ru_stime})
            sum += double(t.tv_sec) * 1e3 + double(t.tv_usec) / 1e3;
    }
    return sum;
}

double WallMilliseconds() {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double Median(std::vector<double>& times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

struct TSide {
    const char* Name;
    std::function<void()> Work;
    std::vector<double> Wall = {};
    std::vector<double> Processor = {};

    void Run() {
        const double wall = WallMilliseconds();
        const double processor = ProcessorMilliseconds();
        Work();
        Wall.push_back(WallMilliseconds() - wall);
        Processor.push_back(ProcessorMilliseconds() - processor);
    }
};

void Save(TZQPDFDocument& document, const QString& path, int dpi) {
    TZQPDFEditor editor(nullptr);
    editor.setDocument(&document);
    editor.SetCurrentPage(Page);
    editor.SaveGraphicPageToBitmap(Narrow(path), dpi);
}

void Run(int rounds) {
    const QTemporaryDir folder;
    const QString input = folder.filePath(QStringLiteral("scan.pdf"));
    const QString output = folder.filePath(QStringLiteral("page"));
    QFile file(input);
    if (!file.open(QIODevice::WriteOnly))
        throw Exception(QStringLiteral("cannot write ") + input);
    file.write(LargeScan());
    file.close();
    std::printf("%d pages, %.0f MB, page %d at %d dpi\n", Pages, double(file.size()) / 1e6, Page, Dpi);

    TZQPDFDocument kept(nullptr);
    kept.OpenFromFile(input, {});
    TSide sides[] = {
        {"pdftoppm",
         [&] {
             const QString page = QString::number(Page);
             QProcess::execute(
                 QStringLiteral("pdftoppm"),
                 {"-f", page, "-l", page, "-r", QString::number(Dpi), "-png", "-singlefile", input, output});
         }},
        {"opened for it",
         [&] {
             TZQPDFDocument document(nullptr);
             document.OpenFromFile(input, {});
             Save(document, output + ".png", Dpi);
         }},
        {"open already", [&] { Save(kept, output + ".png", Dpi); }},
        {"open already, as BMP", [&] { Save(kept, output + ".bmp", Dpi); }},
    };
    for (TSide& side : sides)
        side.Work(); // warms up
    for (int round = 0; round < rounds; ++round)
        for (TSide& side : sides)
            side.Run();
    for (TSide& side : sides)
        std::printf("%-22s %7.1f ms processor, %7.1f ms wall\n", side.Name, Median(side.Processor),
                    Median(side.Wall));
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv); // finds the picture formats
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype rounds = arguments.indexOf(QStringLiteral("--rounds"));
    try {
        Run(rounds > 0 && rounds + 1 < arguments.size() ? std::max(arguments[rounds + 1].toInt(), 1) : 11);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
