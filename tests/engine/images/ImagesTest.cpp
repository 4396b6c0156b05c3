// Image files in many forms, put on pages and judged by what other programs show of them.
#include "engine/PdfJudges.h"
#include "engine/content/FormContent.h"
#include "engine/images/DocumentImages.h"
#include "engine/images/ImageCache.h"
#include "engine/images/ImageData.h"
#include "engine/images/ImageFile.h"
#include "engine/images/SampleImages.h"
#include "engine/pdf/Errors.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QImageWriter>
#include <QThread>

#include <qpdf/QPDFWriter.hh>

namespace {

constexpr int White = 0, MinIsBlack = 1, Rgb = 2, Palette = 3, Cmyk = 5, YCbCr = 6,
              Lab = 8;                                                       // TIFF's photometric
constexpr int Plain = 1, Lzw = 5, JpegCode = 7, G3 = 3, G4 = 4, Deflate = 8; // and its compression

const QList<QList<int>> Colors = {{255, 0, 0},     {0, 200, 0},     {0, 0, 255},
                                  {255, 255, 255}, {128, 128, 128}, {0, 0, 0}};
const QList<QList<int>> Greys = {{0}, {50}, {100}, {150}, {200}, {255}};
const QList<QList<int>> Bits = {{1}, {0}, {1}, {1}, {0}, {0}};
const QList<QList<int>> Indexes = {{0}, {1}, {2}, {3}, {4}, {5}};
const QList<QList<int>> Labs = {{138, 81, 70}, {0, 0, 0},     {255, 0, 0},
                                {127, 0, 0},   {75, 68, 144}, {224, 177, 81}};
const QList<QList<int>> Inks = {{0, 255, 255, 0}, {255, 0, 0, 0}, {0, 0, 0, 255},
                                {0, 0, 0, 0},     {0, 0, 255, 0}, {0, 255, 0, 0}};
/// The same with a fourth sample: the second block half clear, the third wholly.
const QList<QList<int>> Veiled = {{255, 0, 0, 255},     {0, 0, 0, 128},       {0, 0, 255, 0},
                                  {255, 255, 255, 255}, {128, 128, 128, 255}, {0, 0, 0, 255}};

/// What is seen of each: grey levels, or RGB as 0xRRGGBB.
const QList<int> SeenColors = {0xFF0000, 0x00C800, 0x0000FF, 0xFFFFFF, 0x808080, 0x000000};
const QList<int> SeenGreys = {0x000000, 0x323232, 0x646464, 0x969696, 0xC8C8C8, 0xFFFFFF};
const QList<int> SeenBits = {0xFFFFFF, 0, 0xFFFFFF, 0xFFFFFF, 0, 0};
const QList<int> SeenVeiled = {0xFF0000, 0x7F7F7F, 0xFFFFFF, 0xFFFFFF, 0x808080, 0x000000};
const QList<int> SeenInks = {0xFF0000, 0x00FFFF, 0x000000, 0xFFFFFF, 0xFFFF00, 0xFF00FF};
const QList<int> SeenYcc = {0xFF0000, 0, 0xFFFFFF, 0x808080, 0x323232, 0x646464};
const QList<int> SeenLabs = {0xFF0000, 0, 0xFFFFFF, 0x777777, 0x0000FF, 0x00FF00};
const QList<int> SeenDimmed = {0xFF0000, 0xFF7F7F, 0xFFFFFF, 0xFFFFFF, 0x808080, 0x000000};
const QList<int> SeenKeyed = {0xFFFFFF, 0x00C800, 0x0000FF,
                              0xFFFFFF, 0x808080, 0x000000}; // the first is clear

QByteArray PaletteOf(const QList<QList<int>>& colors) {
    QByteArray result;
    for (const QList<int>& color : colors)
        for (const int part : color)
            result += char(part);
    return result;
}

QList<QList<int>> Deep(QList<QList<int>> blocks) {
    for (QList<int>& block : blocks)
        for (int& sample : block)
            sample *= 257;
    return blocks;
}

QList<QList<int>> Inverse(QList<QList<int>> blocks, int most = 255) {
    for (QList<int>& block : blocks)
        for (int& sample : block)
            sample = most - sample;
    return blocks;
}

QByteArray Written(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(QImageWriter(&buffer, format).write(image)) << format;
    return bytes;
}

QImage Shape(const TSampleImage& sample, QImage::Format format) {
    return QImage(reinterpret_cast<const uchar*>(sample.Rows.constData()), sample.Width, sample.Height,
                  sample.Rows.size() / sample.Height, format)
        .copy();
}

QByteArray Bmp(const TSampleImage& sample, QImage::Format format, const QList<QRgb>& table = {}) {
    QImage image = Shape(sample, format);
    image.setColorTable(table);
    image.setDotsPerMeterX(11811); // 300 dpi
    image.setDotsPerMeterY(5906);
    return Written(image, format == QImage::Format_Grayscale8 ? "pgm" : "bmp");
}

struct TPlaced {
    std::shared_ptr<const TImageFile> Image;
    int Width = 24;
    int Height = 16;
};

/// Writes a PDF with each image on a page of its own, which it fills.
void MakePages(const string& path, const QList<TPlaced>& images) {
    QPDF pdf;
    pdf.emptyPDF();
    TDocumentImages drawn(pdf);
    for (const TPlaced& placed : images) {
        TFormContent content;
        drawn.Draw(content, *placed.Image, 0, 0, placed.Width, placed.Height);
        QPDFObjectHandle page = QPDFObjectHandle::parse("<< /Type /Page >>");
        page.replaceKey("/MediaBox", QPDFObjectHandle::newArray(
                                         QPDFObjectHandle::Rectangle(0, 0, placed.Width, placed.Height)));
        page.replaceKey("/Resources", content.Resources());
        page.replaceKey("/Contents", QPDFObjectHandle::newStream(&pdf, content.Data()));
        pdf.addPage(page, false);
    }
    const QByteArray name = path.toUtf8(); // the writer borrows it
    QPDFWriter writer(pdf, name.constData());
    writer.setMinimumPDFVersion("1." + std::to_string(drawn.MinorVersion()));
    writer.write();
}

/// Each page's picture, a pixel a point.
QList<QImage> Shown(const TWorkspace& files, const string& path, const char* program) {
    const string folder = files.Path(QLatin1String(program));
    QDir().mkpath(folder);
    const QStringList arguments =
        program == QByteArray("mutool")
            ? QStringList{"draw", "-q", "-A", "0", "-r", "72", "-o", folder + "/%03d.png", path}
            : QStringList{"-r", "72", "-png", path, folder + "/p"};
    const TProgramResult run = RunProgram(QLatin1String(program), arguments);
    EXPECT_EQ(run.Exit, 0) << run.Errors.toStdString();
    EXPECT_FALSE(run.Errors.contains("rror")) << run.Errors.toStdString(); // "error", "Syntax Error"
    QList<QImage> pages;
    for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name))
        pages.append(QImage(folder + u'/' + name));
    return pages;
}

/// What `pdfimages -list` says of the images of each page: colours, bits and code, as "rgb 8 jpeg"; a code
/// that any data may have is left out. Masks follow as "smask gray 8".
QList<QString> Listed(const string& path) {
    QList<QString> pages;
    const QByteArray output = RunProgram("pdfimages", {"-list", path}).Out;
    for (const QByteArray& line : output.split('\n').mid(2)) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 9)
            continue;
        const QByteArray code = fields[8] == "image" ? QByteArray() : ' ' + fields[8];
        const QString text = QString::fromUtf8(fields[5] + ' ' + fields[7] + code);
        if (fields[2] == "image")
            pages.append(text);
        else
            pages.back() += u' ' + QString::fromUtf8(fields[2]) + u' ' + text;
    }
    return pages;
}

void ExpectBlocks(const QImage& page, const QList<int>& seen, int tolerance, const std::string& name) {
    ASSERT_EQ(page.size(), QSize(24, 16)) << name;
    for (int i = 0; i < 6; ++i) {
        const QColor is = page.pixelColor(i % 3 * BlockSize + 4, i / 3 * BlockSize + 4);
        const QColor wanted = QColor(QRgb(seen[i]));
        const int apart = std::max({std::abs(is.red() - wanted.red()), std::abs(is.green() - wanted.green()),
                                    std::abs(is.blue() - wanted.blue())});
        EXPECT_LE(apart, tolerance) << name << ", block " << i << ": " << is.name().toStdString() << " for "
                                    << wanted.name().toStdString();
    }
}

TEST(Images, EveryFormIsSeenAsItWasMade) {
    const QByteArray palette = PaletteOf(Colors);
    constexpr int Lossy = 6, Ink = 120; // each program has its own idea of inks
    const QByteArray grey = JpegOf(Blocks(8, Greys)), jpeg = JpegOf(Blocks(8, Colors));
    const QByteArray png = PngOf(Blocks(8, Colors)), indexed = PngOf(Blocks(4, Indexes), {3, false, palette});
    const TSampleImage colors = Blocks(8, Colors), veiled = Blocks(8, Veiled), indexes = Blocks(8, Indexes);
    const TSampleImage bits = Blocks(1, Bits), inverse = Blocks(1, Inverse(Bits, 1)), inks = Blocks(8, Inks);
    const TSampleImage inkless = Blocks(8, Inverse(Inks)), deep = Blocks(16, Deep(Colors));
    const TSampleImage ycc = Blocks(
        8, {{76, 85, 255}, {0, 128, 128}, {255, 128, 128}, {128, 128, 128}, {50, 128, 128}, {100, 128, 128}});
    QList<QList<int>> halfRed = Veiled;
    halfRed[1] = {128, 0, 0, 128}; // what red becomes when it is multiplied by that opacity
    const TSampleImage dimmed = Blocks(8, halfRed);
    struct {
        const char* Name;
        const char* Listed;
        QByteArray File;
        QList<int> Seen = SeenColors;
        int Tolerance = 1;
    } const cases[] = {
        {"jpeg", "rgb 8 jpeg", jpeg, SeenColors, Lossy},
        {"jpeg grey", "gray 8 jpeg", grey, SeenGreys, Lossy},
        {"jpeg progressive", "rgb 8 jpeg", JpegOf(colors, {.Progressive = true}), SeenColors, Lossy},
        {"jpeg rgb inside", "rgb 8 jpeg", JpegOf(colors, {.PlainRgb = true}), SeenColors, Lossy},
        {"jpeg arithmetic", "rgb 8", JpegOf(colors, {.Arithmetic = true}), SeenColors, Lossy},
        {"jpeg cmyk", "cmyk 8 jpeg", JpegOf(inkless), SeenInks, Ink},
        {"jpeg cmyk arithmetic", "cmyk 8", JpegOf(inkless, {.Arithmetic = true}), SeenInks, Ink},
        {"jpeg with a film behind", "rgb 8 jpeg", jpeg + QByteArray(100, 'x'), SeenColors, Lossy},
        {"png", "rgb 8", png},
        {"png 16", "rgb 16", PngOf(deep)},
        {"png grey 1", "gray 1", PngOf(bits, {.ColorType = 0}), SeenBits},
        {"png grey 16 interlaced", "gray 16", PngOf(Blocks(16, Deep(Greys)), {0, true}), SeenGreys},
        {"png palette 4", "index 4", indexed},
        {"png palette 8 interlaced", "index 8", PngOf(indexes, {3, true, palette})},
        {"png alpha", "rgb 8 smask gray 8", PngOf(veiled, {.ColorType = 6}), SeenVeiled},
        {"png alpha 16 interlaced", "rgb 16 smask gray 16", PngOf(Blocks(16, Deep(Veiled)), {6, true}),
         SeenVeiled},
        {"png clear colour", "rgb 8", WithChunk(png, "tRNS", QByteArray("\0\xFF\0\0\0\0", 6)), SeenKeyed},
        {"png clear index", "index 4", WithChunk(indexed, "tRNS", QByteArray(1, 0)), SeenKeyed},
        {"png clear indexes", "index 4 smask gray 1",
         WithChunk(indexed, "tRNS", QByteArray("\0\xFF\xFF\0", 4)), SeenKeyed},
        {"tiff", "rgb 8", TiffOf(colors, {Rgb, Lzw})},
        {"tiff strips", "rgb 8",
         TiffOf(colors, {.Photometric = Rgb, .Compression = Deflate, .RowsPerStrip = 5})},
        {"tiff tiles 16", "rgb 16", TiffOf(deep, {.Photometric = Rgb, .Compression = Plain, .Tiled = true})},
        {"tiff planes", "rgb 8",
         TiffOf(colors, {.Photometric = Rgb, .Compression = Plain, .Separate = true})},
        {"tiff jpeg", "rgb 8", TiffOf(colors, {Rgb, JpegCode}), SeenColors, 40},
        {"tiff photo", "rgb 8", TiffOf(colors, {YCbCr, JpegCode}), SeenColors, 40},
        {"tiff ycbcr", "rgb 8", TiffOf(ycc, {YCbCr}), SeenYcc, 3},
        {"tiff lab", "rgb 8", TiffOf(Blocks(8, Labs), {Lab}), SeenLabs, 12},
        {"tiff lab 16", "rgb 16", TiffOf(Blocks(16, Deep(Labs)), {Lab}), SeenLabs, 28},
        {"tiff palette", "index 4",
         TiffOf(Blocks(4, Indexes), {.Photometric = Palette, .Compression = Plain, .Palette = palette})},
        {"tiff cmyk", "cmyk 8", TiffOf(inks, {Cmyk}), SeenInks, Ink},
        {"tiff white is 0", "gray 8", TiffOf(Blocks(8, Inverse(Greys)), {White}), SeenGreys},
        {"tiff 1 bit", "gray 1", TiffOf(bits, {MinIsBlack}), SeenBits},
        {"tiff fax", "gray 1 ccitt", TiffOf(inverse, {White, G4}), SeenBits},
        {"tiff fax, black is 0", "gray 1 ccitt", TiffOf(bits, {MinIsBlack, G4}), SeenBits},
        {"tiff fax, strips", "gray 1 ccitt",
         TiffOf(inverse, {.Photometric = White, .Compression = G4, .RowsPerStrip = 7}), SeenBits},
        {"tiff fax 3", "gray 1 ccitt", TiffOf(inverse, {White, G3}), SeenBits},
        {"tiff alpha", "rgb 8 smask gray 8",
         TiffOf(veiled, {.Photometric = Rgb, .Compression = Plain, .ExtraSample = 2}), SeenVeiled},
        {"tiff multiplied", "rgb 8 smask gray 8",
         TiffOf(dimmed, {.Photometric = Rgb, .Compression = Plain, .ExtraSample = 1}), SeenDimmed},
        {"bmp", "rgb 8", Bmp(colors, QImage::Format_RGB888)},
        {"bmp palette", "index 8",
         Bmp(indexes, QImage::Format_Indexed8, {SeenColors.begin(), SeenColors.end()})},
        {"bmp 1 bit", "gray 1", Bmp(bits, QImage::Format_Mono, {0xFF000000, 0xFFFFFFFF}), SeenBits},
        {"pgm", "gray 8", Bmp(Blocks(8, Greys), QImage::Format_Grayscale8), SeenGreys},
        {"webp", "rgb 8 smask gray 8", Written(Shape(veiled, QImage::Format_RGBA8888), "webp"), SeenVeiled,
         Lossy},
        {"gif", "rgb 8", GifOf(indexes, palette)},
    };
    const TWorkspace files;
    QList<TPlaced> images;
    for (const auto& c : cases)
        images.append({TImageFile::Load(files.Write(QString::fromUtf8(c.Name), c.File))});
    const string path = files.Path("out.pdf");
    MakePages(path, images);
    EXPECT_EQ(QpdfCheck(path), 0);
    const QList<QString> listed = Listed(path);
    for (const char* program : {"mutool", "pdftoppm"}) {
        const QList<QImage> pages = Shown(files, path, program);
        ASSERT_EQ(pages.size(), images.size());
        ASSERT_EQ(listed.size(), images.size());
        for (qsizetype i = 0; i < pages.size(); ++i) {
            EXPECT_EQ(listed[i], QString::fromUtf8(cases[i].Listed)) << cases[i].Name;
            ExpectBlocks(pages[i], cases[i].Seen, cases[i].Tolerance,
                         program + std::string(", ") + cases[i].Name);
        }
    }
}

TEST(Images, OrientationAndResolutionAreTheFilesOwn) {
    const TWorkspace files;
    QList<TPlaced> images;
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const TSampleImage blocks = Blocks(8, Colors, orientation);
        const QByteArray exif = ExifOf(orientation, 144);
        const QByteArray forms[] = {
            WithSegment(JpegOf(blocks), 0xE1, QByteArray("Exif\0\0", 6) + exif),
            WithChunk(PngOf(blocks), "eXIf", exif),
            TiffOf(blocks, {.Photometric = Rgb, .Orientation = orientation, .Dpi = 144}),
        };
        for (const QByteArray& form : forms) {
            images.append({TImageFile::Load(files.Write(QString::number(images.size()), form))});
            EXPECT_DOUBLE_EQ(images.back().Image->Width(), 12) << images.size();
            EXPECT_DOUBLE_EQ(images.back().Image->Height(), 8) << images.size();
        }
    }
    const string path = files.Path("out.pdf");
    MakePages(path, images);
    const QList<QImage> pages = Shown(files, path, "mutool");
    ASSERT_EQ(pages.size(), images.size());
    for (qsizetype i = 0; i < pages.size(); ++i)
        ExpectBlocks(pages[i], SeenColors, 6, std::to_string(i));

    const QByteArray png = PngOf(Blocks(8, Colors));
    struct {
        const char* Name;
        QByteArray File;
        Double Width, Height;
    } const cases[] = {
        {"none", png, 24, 16},
        {"png", WithChunk(png, "pHYs", QByteArray("\0\0\x16\x25\0\0\x2C\x4A\1", 9)), 12, 4},
        {"png nonsense", WithChunk(png, "pHYs", QByteArray("\0\0\0\1\0\0\0\1\1", 9)), 24, 16},
        {"png aspect", WithChunk(png, "pHYs", QByteArray("\0\0\x16\x25\0\0\x2C\x4A\0", 9)), 24, 16},
        {"jpeg", JpegOf(Blocks(8, Colors), {.Dpi = 36}), 48, 32},
        {"bmp", Bmp(Blocks(8, Colors), QImage::Format_RGB888), 24 * 72 / 300.0, 16 * 72 / 150.0},
        {"gif", GifOf(Blocks(8, Indexes), PaletteOf(Colors)), 24, 16},
    };
    for (const auto& c : cases) {
        const auto image = TImageFile::Load(files.Write(QString::fromUtf8(c.Name), c.File));
        EXPECT_NEAR(image->Width(), c.Width, 0.01) << c.Name;
        EXPECT_NEAR(image->Height(), c.Height, 0.01) << c.Name;
    }
}

/// The dictionary of a page's only image.
QPDFObjectHandle ImageOf(QPDFObjectHandle page) {
    return page.getKey("/Resources").getKey("/XObject").getKey("/X0").getDict();
}

TEST(Images, TilesGiveEveryRow) {
    const TWorkspace files;
    for (const int orientation : {1, 6}) { // one row of tiles, and two whose second is half outside
        const TSampleImage blocks = Blocks(8, Colors, orientation);
        const auto load = [&](const char* name, bool tiled) {
            return TImageFile::Load(
                files.Write(QString::fromLatin1(name),
                            TiffOf(blocks, {.Photometric = Rgb, .Compression = Plain, .Tiled = tiled})));
        };
        EXPECT_EQ(load("tiles.tif", true)->Data()->Data, load("rows.tif", false)->Data()->Data);
    }
}

TEST(ImageCache, KeepsTheLastUsedWithinItsLimit) {
    struct stat info {};
    info.st_mtim.tv_sec = info.st_ctim.tv_sec = 1'000'000;
    const TFileState stamp = StateOf(info);
    TImageCache cache(100);
    const auto add = [&](const char* name, qint64 bytes) {
        cache.Add(name, stamp, std::make_shared<const TImageFile>(name, std::make_shared<const TImageData>()),
                  bytes);
    };
    const auto known = [&](const char* name) { return cache.Find(name, stamp) != nullptr; };
    add("a", 40);
    add("b", 60);
    EXPECT_TRUE(known("b"));
    EXPECT_TRUE(known("a")); // last
    add("c", 60);
    EXPECT_TRUE(known("a") && known("c"));
    EXPECT_FALSE(known("b")) << "the one used least lately goes";
    add("huge", 101);
    EXPECT_FALSE(known("huge"));
    EXPECT_TRUE(known("a") && known("c")) << "what is beyond the limit alone drives nothing out";
    const auto held = std::make_shared<const TImageFile>("huge", std::make_shared<const TImageData>());
    cache.Add("held", stamp, held, 101);
    EXPECT_EQ(cache.Find("held", stamp), held) << "known while somebody uses it";
    info.st_size = 1;
    EXPECT_EQ(cache.Find("a", StateOf(info)), nullptr);
}

TEST(Images, ANewerProfileNeedsANewerPdf) {
    const TWorkspace files;
    const string path = files.Path("out.pdf");
    for (const auto& [version, header] : {std::pair("\2", "%PDF-1.3"), {"\4", "%PDF-1.5"}}) {
        const QByteArray profile = ProfileOf("RGB ").replace(8, 1, version);
        const QByteArray png =
            WithChunk(PngOf(Blocks(8, Colors)), "iCCP", QByteArray("n\0\0", 3) + qCompress(profile).mid(4));
        MakePages(path, {{TImageFile::Load(files.Write(QStringLiteral("%1.png").arg(*version), png))}});
        EXPECT_EQ(files.Read("out.pdf").left(8), header);
    }
}

TEST(Images, ColoursStayWhatTheFileSaysTheyAre) {
    const TWorkspace files;
    const QByteArray rgb = ProfileOf("RGB "), grey = ProfileOf("GRAY"), cmyk = ProfileOf("CMYK");
    const auto parts = [](const QByteArray& profile) { // as two segments
        const QByteArray name("ICC_PROFILE\0", 12);
        return QByteArrayList{name + "\2\2" + profile.mid(50), name + "\1\2" + profile.left(50)};
    };
    const auto jpeg = [&](const QList<QList<int>>& blocks, const QByteArray& profile) {
        QByteArray file = JpegOf(Blocks(8, blocks));
        for (const QByteArray& part : parts(profile))
            file = WithSegment(file, 0xE2, part);
        return file;
    };
    const auto png = [&](const TSampleImage& image, const TPngForm& form, const QByteArray& profile) {
        return WithChunk(PngOf(image, form), "iCCP", QByteArray("n\0\0", 3) + qCompress(profile).mid(4));
    };
    const auto linear = [](const QByteArray& file) {
        return WithChunk(file, "gAMA", QByteArray("\0\1\x86\xA0", 4)); // 1.0
    };
    const TPngForm greyForm{.ColorType = 0};
    struct {
        const char* Name;
        QByteArray File;
        const char* Space;
    } const cases[] = {
        {"jpeg", jpeg(Colors, rgb), "ICCBased 3"},
        {"jpeg cmyk", jpeg(Inks, cmyk), "ICCBased 4"},
        {"jpeg wrong", jpeg(Colors, cmyk), "DeviceRGB"},
        {"png", png(Blocks(8, Colors), {}, rgb), "ICCBased 3"},
        {"png grey", png(Blocks(8, Greys), greyForm, grey), "ICCBased 1"},
        {"png grey wrong", png(Blocks(8, Greys), greyForm, rgb), "DeviceGray"},
        {"png palette", png(Blocks(8, Indexes), {3, false, PaletteOf(Colors)}, rgb), "Indexed"},
        {"png newer", png(Blocks(8, Colors), {}, QByteArray(rgb).replace(8, 1, "\5")), "DeviceRGB"},
        {"png cut", png(Blocks(8, Colors), {}, rgb.left(130)), "DeviceRGB"},
        {"png linear", linear(PngOf(Blocks(8, Colors))), "CalRGB"},
        {"png grey linear", linear(PngOf(Blocks(8, Greys), greyForm)), "CalGray"},
        {"png usual", WithChunk(PngOf(Blocks(8, Colors)), "gAMA", QByteArray("\0\0\xB1\x8F", 4)),
         "DeviceRGB"},
        {"tiff", TiffOf(Blocks(8, Colors), {.Photometric = Rgb, .Profile = rgb}), "ICCBased 3"},
    };
    QList<TPlaced> images;
    for (const auto& c : cases)
        images.append({TImageFile::Load(files.Write(QString::fromUtf8(c.Name), c.File))});
    const string path = files.Path("out.pdf");
    MakePages(path, images);
    EXPECT_EQ(QpdfCheck(path), 0);
    QPDF pdf;
    pdf.processFile(path.toUtf8().constData());
    std::set<QPDFObjGen> profiles;
    std::vector<QPDFObjectHandle> pages = pdf.getAllPages();
    for (size_t i = 0; i < pages.size(); ++i) {
        QPDFObjectHandle space =
            pages[i].getKey("/Resources").getKey("/XObject").getKey("/X0").getDict().getKey("/ColorSpace");
        std::string name = (space.isArray() ? space.getArrayItem(0) : space).getName().substr(1);
        if (name == "Indexed")
            space = space.getArrayItem(1);
        if (space.isArray() && space.getArrayItem(0).getName() == "/ICCBased") {
            profiles.insert(space.getArrayItem(1).getObjGen());
            if (name == "ICCBased")
                name += ' ' + std::to_string(space.getArrayItem(1).getDict().getKey("/N").getIntValue());
        }
        EXPECT_EQ(name, cases[i].Space) << cases[i].Name;
    }
    EXPECT_EQ(profiles.size(), 3U); // one of each
    // Linear samples, with the primaries of sRGB, whose sum is its white.
    QPDFObjectHandle linearSpace = ImageOf(pages[9]).getKey("/ColorSpace").getArrayItem(1);
    EXPECT_EQ(linearSpace.getKey("/Gamma").unparse(), "[ 1 1 1 ]");
    for (int i = 0; i < 3; ++i) {
        QPDFObjectHandle matrix = linearSpace.getKey("/Matrix");
        Double sum = 0;
        for (int of = 0; of < 9; of += 3)
            sum += matrix.getArrayItem(of + i).getNumericValue();
        EXPECT_NEAR(sum, (std::array{0.9505, 1.0, 1.0891}[size_t(i)]), 0.001);
        EXPECT_NEAR(matrix.getArrayItem(i * 3 + 1).getNumericValue(),
                    (std::array{0.2126, 0.7152, 0.0722}[size_t(i)]), 0.001);
    }
}

TEST(Images, AFileIsEmbeddedOnceAndReadOnce) {
    const TWorkspace files;
    const string path = files.Write("logo.png", PngOf(Blocks(8, Veiled), {.ColorType = 6}));
    const string copy = files.Write("copy.png", files.Read("logo.png"));
    QThread::msleep(50); // a file just written may still change without being seen to
    const auto image = TImageFile::Load(path);
    EXPECT_EQ(TImageFile::Load(path), image);
    EXPECT_EQ(TImageFile::Load(copy)->Digest(), image->Digest());
    const string out = files.Path("out.pdf");
    MakePages(out, QList<TPlaced>(50, {image}) + QList<TPlaced>{{TImageFile::Load(copy)}});
    EXPECT_EQ(CountOfType(out, "/XObject"), 2); // the image and its mask
    EXPECT_EQ(Shown(files, out, "mutool").size(), 51);

    files.Write("logo.png", PngOf(Blocks(8, Colors)));
    EXPECT_NE(TImageFile::Load(path)->Digest(), image->Digest());
    QFile::remove(path);
    EXPECT_THROW(static_cast<void>(TImageFile::Load(path)), EFileError);
}

/// The reason for which a file is refused; empty if it isn't.
string RefusalOf(const TWorkspace& files, const QByteArray& contents) {
    static int count = 0; // writing over a file waits for the disk
    const string path = files.Write(QString::number(++count), contents);
    try {
        const auto image = TImageFile::Load(path);
        QPDF pdf;
        pdf.emptyPDF();
        TFormContent content;
        TDocumentImages(pdf).Draw(content, *image, 0, 0, 1, 1);
    } catch (const EPDFError& e) {
        const string start = QStringLiteral("Cannot use \"%1\" as an image: ").arg(path);
        EXPECT_TRUE(e.Message().startsWith(start)) << e.what();
        return e.Message().mid(start.size());
    }
    return {};
}

TEST(Images, WhatIsNoImageIsRefusedInClearWords) {
    const TWorkspace files;
    const QByteArray jpeg = JpegOf(Blocks(8, Colors)), png = PngOf(Blocks(8, Colors));
    const QByteArray frame("\xFF\xC0", 2), tiff = TiffOf(Blocks(8, Colors), {Rgb});
    QByteArray broken = png;
    const QByteArray alpha = PngOf(Blocks(8, Veiled), {.ColorType = 6});
    broken[png.indexOf("IDAT") + 20] ^= 1;
    struct {
        const char* Name;
        QByteArray File;
        const char* Reason;
    } const cases[] = {
        {"empty", "", "not an image of a known format"},
        {"text", "Dear Sir or Madam,\n", "not an image of a known format"},
        {"pdf", SamplePdf(1), "not an image of a known format"},
        {"svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>",
         "not an image of a known format"},
        {"jpeg cut", jpeg.left(jpeg.size() / 2), "damaged: it ends too early"},
        {"jpeg header", jpeg.left(20), "damaged: it ends too early"},
        {"jpeg lossless", QByteArray(jpeg).replace(frame, "\xFF\xC3"),
         "a lossless or hierarchical JPEG file, which PDF knows nothing of"},
        {"jpeg 12",
         QByteArray(jpeg).replace(frame + QByteArray("\0\x11\x08", 3), frame + QByteArray("\0\x11\x0C", 3)),
         "a JPEG file of more than 8 bits a colour, which PDF knows nothing of"},
        {"jpeg no height", QByteArray(jpeg).replace(QByteArray("\x08\0\x10", 3), QByteArray("\x08\0\0", 3)),
         "damaged: its size makes no sense"},
        {"png cut", png.left(png.size() - 12), "damaged: it ends too early"},
        {"png flipped", broken, "damaged: a checksum is wrong"},
        {"png empty", png.left(33) + png.right(12), "damaged: it holds no picture"},
        {"png huge", WithHeader(alpha, QByteArray("\0\1\x86\xA0\0\1\x86\xA0", 8)),
         "too large: it has more than 200 million pixels or takes more than a gigabyte"},
        {"tiff cut", tiff.left(tiff.size() - 20), "damaged: its header makes no sense"},
        {"tiff header", QByteArray("II*\0\x08\0\0\0\0\0", 10), "damaged: its header makes no sense"},
        {"bmp cut", Bmp(Blocks(8, Colors), QImage::Format_RGB888).left(30),
         "damaged: its data makes no sense"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RefusalOf(files, c.File), QString::fromUtf8(c.Reason)) << c.Name;
    EXPECT_THROW(static_cast<void>(TImageFile::Load(files.Path())), EFileError); // a folder
}

TEST(Images, DamageNeverDoesHarm) {
    const TWorkspace files;
    const QByteArray alpha = PngOf(Blocks(8, Veiled), {.ColorType = 6, .Interlaced = true});
    const QByteArray samples[] = {
        JpegOf(Blocks(8, Colors), {.Arithmetic = true}),
        alpha,
        WithSegment(JpegOf(Blocks(8, Greys)), 0xE1, QByteArray("Exif\0\0", 6) + ExifOf(6, 300)),
        TiffOf(Blocks(8, Veiled),
               {.Photometric = Rgb, .Compression = Lzw, .RowsPerStrip = 3, .ExtraSample = 1}),
        TiffOf(Blocks(4, Indexes), {.Photometric = Palette, .Palette = PaletteOf(Colors)}),
        TiffOf(Blocks(8, Colors), {.Photometric = Rgb, .Tiled = true}),
        GifOf(Blocks(8, Indexes), PaletteOf(Colors)),
    };
    int refused = 0;
    for (const QByteArray& sample : samples) {
        for (qsizetype at = 0; at < sample.size(); at += 1 + sample.size() / 200) {
            QByteArray flipped = sample;
            flipped[at] = char(~flipped[at]);
            refused += RefusalOf(files, sample.left(at)).isEmpty() ? 0 : 1;
            refused += RefusalOf(files, flipped).isEmpty() ? 0 : 1;
        }
    }
    EXPECT_GT(refused, 1000);
}

} // namespace
