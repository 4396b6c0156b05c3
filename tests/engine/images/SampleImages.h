#pragma once
// Image files made by the libraries of their formats: one picture of 3 by 2 blocks in many forms.
#include "base/Text.h"

#include <QList>

/// Samples as PNG has them: rows at whole bytes, 16 bits with the high byte first.
struct TSampleImage {
    int Width = 0;
    int Height = 0;
    int Bits = 8;
    int Samples = 3; ///< of a pixel
    QByteArray Rows;
};

constexpr int BlockSize = 8;

/// 24 by 16 pixels of 6 blocks, row by row, each given by its samples. What is stored is turned so that it
/// is seen as described under that EXIF orientation.
[[nodiscard]] TSampleImage Blocks(int bits, const QList<QList<int>>& blocks, int orientation = 1);

struct TPngForm {
    int ColorType = 2;
    bool Interlaced = false;
    QByteArray Palette = {}; ///< RGB triples
};
[[nodiscard]] QByteArray PngOf(const TSampleImage& image, const TPngForm& form = {});
/// With a further chunk before the image data.
[[nodiscard]] QByteArray WithChunk(QByteArray png, const QByteArray& type, const QByteArray& data);

/// With another width and height, 32 bits each.
[[nodiscard]] QByteArray WithHeader(QByteArray png, const QByteArray& size);

struct TJpegForm {
    bool Progressive = false;
    bool Arithmetic = false;
    bool PlainRgb = false; ///< no YCbCr, and neither marker that would say so
    int Dpi = 0;
};
/// Grey, RGB or CMYK by the number of samples.
[[nodiscard]] QByteArray JpegOf(const TSampleImage& image, const TJpegForm& form = {});
/// With a further segment in front.
[[nodiscard]] QByteArray WithSegment(QByteArray jpeg, int marker, const QByteArray& data);

struct TTiffForm {
    int Photometric = 2;
    int Compression = 1;
    int RowsPerStrip = 0; ///< 0 for all
    bool Tiled = false;
    bool Separate = false;
    int ExtraSample = -1;
    int Orientation = 1;
    int Dpi = 0;
    QByteArray Palette = {};
    QByteArray Profile = {};
};
[[nodiscard]] QByteArray TiffOf(const TSampleImage& image, const TTiffForm& form);

/// Of a palette's indexes.
[[nodiscard]] QByteArray GifOf(const TSampleImage& image, const QByteArray& palette);
/// As far as a reader looks that only asks whether it fits the colours.
[[nodiscard]] QByteArray ProfileOf(const char* space);
/// With these two entries of the first directory and one of the resolution.
[[nodiscard]] QByteArray ExifOf(int orientation, int dpi);
