#pragma once
// What pages look like to other programs.
#include "engine/PdfJudges.h"

#include <QImage>

constexpr int RenderDpi = 144; // two pixels a point
constexpr int PixelsPerPoint = 2;

enum class TRenderer { Poppler, MuPdf };

/// A page, counted from 1, as displayed.
inline QImage RenderedBy(TRenderer renderer, const string& path, int page = 1) {
    const string number = QString::number(page);
    const string dpi = QString::number(RenderDpi);
    const string picture = path + QStringLiteral(".png");
    if (renderer == TRenderer::Poppler)
        RunProgram("pdftoppm", {"-cropbox", "-png", "-singlefile", "-r", dpi, "-f", number, path, path});
    else
        RunProgram("mutool", {"draw", "-q", "-r", dpi, "-o", picture, path, number});
    QImage image(picture);
    QFile::remove(picture);
    return image.convertToFormat(QImage::Format_RGB32);
}

/// The rectangle, in points, of the pixels that `shows` tells; nothing where there is none.
template <typename TTest> QRectF InkBox(const QImage& image, const TTest& shows) {
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (shows(QColor(image.pixel(x, y))))
                box |= QRect(x, y, 1, 1);
    return {QPointF(box.topLeft()) / PixelsPerPoint, QSizeF(box.size()) / PixelsPerPoint};
}

/// The share of pixels that clearly differ; 1 for pictures of different sizes.
inline Double ShareOfDifference(const QImage& a, const QImage& b) {
    constexpr int Clearly = 100;
    if (a.isNull() || a.size() != b.size())
        return 1;
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (std::abs(qRed(p) - qRed(q)) > Clearly || std::abs(qGreen(p) - qGreen(q)) > Clearly ||
                std::abs(qBlue(p) - qBlue(q)) > Clearly)
                ++count;
        }
    return Double(count) / (a.width() * a.height());
}
