#include "engine/images/SampleImages.h"

#include "testing/Workspace.h"

#include <QtEndian>

#include <cstdio>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

namespace {

QByteArray Big32(quint32 value) {
    value = qToBigEndian(value);
    return QByteArray(reinterpret_cast<const char*>(&value), 4);
}
QByteArray Big16(int value) {
    return Big32(quint32(value)).mid(2);
}

quint32 Crc(const QByteArray& bytes) {
    quint32 crc = ~0U;
    for (const char byte : bytes) {
        crc ^= quint8(byte);
        for (int i = 0; i < 8; ++i)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

/// Where the pixel is seen that is stored in this column and row.
std::pair<int, int> SeenAt(int orientation, int column, int row, int width, int height) {
    const int x = orientation >= 5 ? row : column;
    const int y = orientation >= 5 ? column : row;
    const bool mirrored = orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7;
    const bool turned = orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
    return {mirrored ? width - 1 - x : x, turned ? height - 1 - y : y};
}

} // namespace

TSampleImage Blocks(int bits, const QList<QList<int>>& blocks, int orientation) {
    constexpr int Width = 3 * BlockSize;
    constexpr int Height = 2 * BlockSize;
    TSampleImage image{orientation >= 5 ? Height : Width,
                       orientation >= 5 ? Width : Height,
                       bits,
                       int(blocks[0].size()),
                       {}};
    for (int row = 0; row < image.Height; ++row) {
        int pending = 0, count = 0;
        for (int column = 0; column < image.Width; ++column) {
            const auto [x, y] = SeenAt(orientation, column, row, Width, Height);
            for (const int sample : blocks[y / BlockSize * 3 + x / BlockSize]) {
                pending = pending << bits | sample;
                count += bits;
                for (; count >= 8; count -= 8)
                    image.Rows += char(pending >> (count - 8));
            }
        }
        if (count > 0)
            image.Rows += char(pending << (8 - count));
    }
    return image;
}

QByteArray PngOf(const TSampleImage& image, const TPngForm& form) {
    QByteArray result;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &result,
        [](png_structp p, png_bytep data, size_t size) {
            static_cast<QByteArray*>(png_get_io_ptr(p))
                ->append(reinterpret_cast<const char*>(data), qsizetype(size));
        },
        nullptr);
    png_set_IHDR(png, info, png_uint_32(image.Width), png_uint_32(image.Height), image.Bits, form.ColorType,
                 form.Interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
    if (!form.Palette.isEmpty())
        png_set_PLTE(png, info, reinterpret_cast<png_const_colorp>(form.Palette.constData()),
                     int(form.Palette.size() / 3));
    png_write_info(png, info);
    std::vector<png_bytep> rows;
    const qsizetype rowSize = image.Rows.size() / image.Height;
    for (int y = 0; y < image.Height; ++y)
        rows.push_back(reinterpret_cast<png_bytep>(const_cast<char*>(image.Rows.constData())) + y * rowSize);
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return result;
}

QByteArray WithChunk(QByteArray png, const QByteArray& type, const QByteArray& data) {
    return png.insert(png.indexOf("IDAT") - 4,
                      Big32(quint32(data.size())) + type + data + Big32(Crc(type + data)));
}

QByteArray WithHeader(QByteArray png, const QByteArray& size) {
    png.replace(16, 8, size);
    return png.replace(29, 4, Big32(Crc(png.mid(12, 17))));
}

QByteArray JpegOf(const TSampleImage& image, const TJpegForm& form) {
    jpeg_error_mgr errors{};
    jpeg_compress_struct info{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = JDIMENSION(image.Width);
    info.image_height = JDIMENSION(image.Height);
    info.input_components = image.Samples;
    info.in_color_space = image.Samples == 1 ? JCS_GRAYSCALE : image.Samples == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 100, TRUE);
    if (form.PlainRgb) {
        jpeg_set_colorspace(&info, JCS_RGB);
        info.write_Adobe_marker = FALSE;
    }
    for (int i = 0; i < info.num_components; ++i)
        info.comp_info[i].h_samp_factor = info.comp_info[i].v_samp_factor = 1;
    if (form.Progressive)
        jpeg_simple_progression(&info);
    info.arith_code = form.Arithmetic ? TRUE : FALSE;
    info.density_unit = form.Dpi > 0 ? 1 : 0;
    info.X_density = info.Y_density = UINT16(std::max(form.Dpi, 1));
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto* row = reinterpret_cast<JSAMPROW>(const_cast<char*>(image.Rows.constData())) +
                    qsizetype(info.next_scanline) * image.Width * image.Samples;
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const QByteArray result(reinterpret_cast<const char*>(data), qsizetype(size));
    std::free(data);
    return result;
}

QByteArray WithSegment(QByteArray jpeg, int marker, const QByteArray& data) {
    return jpeg.insert(2, QByteArray("\xFF") + char(marker) + Big16(int(data.size()) + 2) + data);
}

QByteArray TiffOf(const TSampleImage& image, const TTiffForm& form) {
    const TWorkspace files;
    const QByteArray path = files.Path("a.tif").toUtf8();
    TIFF* tiff = TIFFOpen(path.constData(), "w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.Width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.Height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, image.Bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, image.Samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, form.Photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, form.Compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, form.Orientation);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, form.Separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if (form.Photometric == PHOTOMETRIC_YCBCR) {
        if (form.Compression == COMPRESSION_JPEG)
            TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    }
    if (form.Dpi > 0) {
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, Double(form.Dpi));
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, Double(form.Dpi));
    }
    if (const quint16 kind = quint16(form.ExtraSample); form.ExtraSample >= 0)
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    if (!form.Profile.isEmpty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, quint32(form.Profile.size()), form.Profile.constData());
    if (!form.Palette.isEmpty()) {
        std::vector<quint16> map[3];
        for (qsizetype i = 0; i < 3 << image.Bits; ++i)
            map[i % 3].push_back(i < form.Palette.size() ? quint16(quint8(form.Palette[i]) * 257) : 0);
        TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0].data(), map[1].data(), map[2].data());
    }
    if (image.Bits == 16)
        TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
    QByteArray rows = image.Rows;
    if (image.Bits == 16)
        qFromBigEndian<quint16>(rows.data(), rows.size() / 2, rows.data());
    const qsizetype rowSize = rows.size() / image.Height;
    if (form.Tiled) {
        constexpr int Side = 16;
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, Side);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, Side);
        const int pixel = image.Bits * image.Samples / 8;
        for (int top = 0; top < image.Height; top += Side)
            for (int x = 0; x < image.Width; x += Side) {
                QByteArray tile;
                for (int y = top; y < top + Side; ++y)
                    tile += rows.mid(y * rowSize, rowSize)
                                .mid(x * pixel, Side * pixel)
                                .leftJustified(Side * pixel);
                TIFFWriteTile(tiff, tile.data(), quint32(x), quint32(top), 0, 0);
            }
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, form.RowsPerStrip > 0 ? form.RowsPerStrip : image.Height);
        for (int plane = 0; plane < (form.Separate ? image.Samples : 1); ++plane) {
            for (int y = 0; y < image.Height; ++y) {
                QByteArray row = rows.mid(y * rowSize, rowSize);
                if (form.Separate)
                    for (int x = 0; x < image.Width; ++x)
                        row[x] = row[x * image.Samples + plane];
                TIFFWriteScanline(tiff, row.data(), quint32(y), quint16(plane));
            }
        }
    }
    TIFFClose(tiff);
    return files.Read("a.tif");
}

QByteArray GifOf(const TSampleImage& image, const QByteArray& palette) {
    // Codes of nine bits throughout: a clear code comes before they would grow.
    QByteArray codes;
    int pending = 0, count = 0;
    const auto put = [&](int code) {
        pending |= code << count;
        for (count += 9; count >= 8; count -= 8, pending >>= 8)
            codes += char(pending);
    };
    for (qsizetype i = 0; i < image.Rows.size(); ++i) {
        if (i % 100 == 0)
            put(256);
        put(quint8(image.Rows[i]));
    }
    put(257);
    codes += char(pending);
    const QByteArray size = QByteArray(1, char(image.Width)) + '\0' + char(image.Height) + '\0';
    QByteArray result = "GIF89a" + size + '\xF7' + QByteArray(2, 0) + palette.leftJustified(768, 0);
    result += ',' + QByteArray(4, 0) + size + '\0' + '\x08';
    for (qsizetype at = 0; at < codes.size(); at += 255)
        result += char(std::min<qsizetype>(255, codes.size() - at)) + codes.mid(at, 255);
    return result + QByteArray(1, 0) + ';';
}

QByteArray ProfileOf(const char* space) {
    QByteArray profile(132, 0);
    return profile.replace(0, 4, Big32(132))
        .replace(8, 1, "\2")
        .replace(12, 4, "mntr")
        .replace(16, 4, space)
        .replace(36, 4, "acsp");
}

QByteArray ExifOf(int orientation, int dpi) {
    return "MM" + Big16(42) + Big32(8) + Big16(3) +                              //
           Big16(0x112) + Big16(3) + Big32(1) + Big16(orientation) + Big16(0) +  //
           Big16(0x11A) + Big16(5) + Big32(1) + Big32(50) +                      //
           Big16(0x128) + Big16(3) + Big32(1) + Big16(2) + Big16(0) + Big32(0) + //
           Big32(quint32(dpi)) + Big32(1);
}
