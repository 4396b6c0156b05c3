// One page of a large scan as a PNG file, against the pdftoppm program: 300 pages of about 0.8 MB each.
//
//     bench_render [--rounds N]
//
// The sides take turns; medians of wall-clock time are printed.
#include "base/Exceptions.h"
#include "engine/Document.h"
#include "engine/editor/Editor.h"
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

namespace {

constexpr int Pages = 300;
constexpr int Page = 150;
constexpr int Dpi = 100;

/// Noise, which no filter makes smaller.
QByteArray Scan(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    std::mt19937 random(1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, random());
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", 80);
    return data;
}

QByteArray LargeScan() {
    constexpr int Width = 900;
    constexpr int Height = 1270;
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

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

struct TSide {
    const char* Name;
    std::function<void()> Work;
    std::vector<double> Times = {};

    [[nodiscard]] double Median() {
        std::sort(Times.begin(), Times.end());
        return Times[Times.size() / 2];
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
    for (int round = -1; round < rounds; ++round) // the first warms up
        for (TSide& side : sides)
            if (const double time = Milliseconds(side.Work); round >= 0)
                side.Times.push_back(time);
    for (TSide& side : sides)
        std::printf("%-22s %7.1f ms\n", side.Name, side.Median());
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
