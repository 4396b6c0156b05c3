// What is put on a page lies where layer space says, upright, and nothing else on the page changes.
#include "engine/CorpusFiles.h"
#include "engine/document/Document.h"
#include "engine/layers/LayerImage.h"
#include "engine/layers/LayerText.h"

#include <QImage>

namespace {

constexpr float Place = 36;
constexpr int ImageTop = 60;
constexpr int ImageSize = 30;
const string Token = QStringLiteral("Zq36placed");

/// Pages as poppler renders them, a pixel a point.
std::vector<QImage> Rendered(const TWorkspace& files, const string& path, int lastPage) {
    const string prefix = files.Path("page");
    RunProgram("pdftoppm", {"-r", "72", "-cropbox", "-l", QString::number(lastPage), path, prefix});
    std::vector<QImage> pages;
    for (const QString& name : QDir(files.Path({})).entryList({"page*.ppm"}, QDir::Files, QDir::Name)) {
        pages.emplace_back(files.Path(name));
        QFile::remove(files.Path(name));
    }
    return pages;
}

/// The first pixel outside `inside` where the two differ, as text; empty if there is none.
std::string DifferenceOutside(const QImage& before, const QImage& after, const QRect& inside) {
    if (before.size() != after.size())
        return "another size";
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if (!inside.contains(x, y) && before.pixel(x, y) != after.pixel(x, y))
                return "at " + std::to_string(x) + ", " + std::to_string(y);
    return {};
}

string RedSquare(const TWorkspace& files) {
    QImage image(ImageSize, ImageSize, QImage::Format_RGB32);
    image.fill(Qt::red);
    const string path = files.Path("red.png");
    image.save(path);
    return path;
}

/// Puts the token and the square on each page. Gives the width of the token.
float PutOnPages(TZQPDFDocument& document, const string& image, int lastPage) {
    float width = 0;
    for (int i = 0; i < lastPage; ++i) {
        TZQLayerCollection& layers = document.Pages().getItem(i).Layers();
        auto* text = new TZQPDFText(&layers);
        text->SetPosition(TGPPointF::Create(Place, Place));
        text->SetText(Token);
        width = text->Width();
        auto* square = new TZQPDFImage(&layers);
        square->LoadFromFile(image);
        square->SetBounds(TGPRectF::Create(Place, ImageTop, ImageSize, ImageSize));
    }
    return width;
}

/// Poppler measures in user units, of which a page may have larger ones than points.
void ExpectPlaced(const TWorkspace& files, const TZQPDFDocument& document, const string& before,
                  const string& after, int pages, float width) {
    const auto words = WordBoxes(after);
    const auto was = Rendered(files, before, pages);
    const auto is = Rendered(files, after, pages);
    ASSERT_EQ(was.size(), size_t(pages));
    ASSERT_EQ(is.size(), size_t(pages));
    for (size_t i = 0; i < size_t(pages); ++i) {
        SCOPED_TRACE("page " + std::to_string(i + 1));
        if (was[i].width() <= Place || was[i].height() <= Place)
            continue; // off the page
        ASSERT_TRUE(words.value(qsizetype(i)).contains(Token)) << "not found";
        const QRectF place = words[qsizetype(i)][Token];
        const Double unit = document.Pages().getItem(int(i)).Geometry().UserUnit;
        EXPECT_NEAR(place.left() * unit, Place, 1);
        EXPECT_NEAR(place.right() * unit, Place + width, 1);
        EXPECT_NEAR(place.top() * unit, Place, 1);
        EXPECT_LT(place.bottom() * unit, ImageTop);
        const auto pixels = [unit](Double points) { return int(points / unit); };
        const QRect drawn(pixels(Place) - 1, pixels(Place) - 1, pixels(std::max(width, float(ImageSize))) + 3,
                          pixels(ImageTop + ImageSize - Place) + 3);
        EXPECT_EQ(DifferenceOutside(was[i], is[i], drawn), "");
        const QPoint middle(pixels(Place + ImageSize / 2.0), pixels(ImageTop + ImageSize / 2.0));
        // Form fields lie above what is put on the page.
        if (is[i].rect().contains(middle) && !before.contains(QLatin1String("/forms/"))) {
            EXPECT_EQ(is[i].pixelColor(middle), QColor(Qt::red));
        }
    }
}

TEST(TPlacement, HoldsForEveryRotationBoxAndUnit) {
    const TWorkspace files;
    const string image = RedSquare(files);
    const std::pair<QByteArray, QByteArray> boxes[] = {
        {"0 0 300 400", ""},
        {"300 400 0 0", ""},
        {"-50 -70 250 330", ""},
        {"0 0 500 600", "/CropBox [100 120 400 520]"},
    };
    for (const int rotation : {0, 90, 180, 270, -90, 450})
        for (const auto& [media, crop] : boxes) {
            SCOPED_TRACE((media + crop).toStdString() + " rotated by " + std::to_string(rotation));
            const string path = files.Path("in.pdf");
            const QByteArray rotate = " /Rotate " + QByteArray::number(rotation);
            MakePdf(path, 1, {.PageEntries = crop + rotate, .MediaBox = media});
            TZQPDFDocument document(nullptr);
            document.OpenFromFile(path, {});
            const float width = PutOnPages(document, image, 1);
            const string out = files.Path("out.pdf");
            document.SaveToPath(out, /*keepSource*/ true, /*takeName*/ false);
            EXPECT_EQ(QpdfCheck(out), 0);
            ExpectPlaced(files, document, path, out, 1, width);
        }
}

TEST(TPlacement, MeetsTheStateThatThePageBeganWith) {
    const TWorkspace files;
    const string image = RedSquare(files);
    const QByteArray contents[] = {"1 0 0 -1 0 842 cm 0 0 50 50 re f",
                                   "q q 2 0 0 2 50 50 cm",
                                   "BT /F1 12 Tf (open) Tj",
                                   "/Span <</ActualText (x)>> BDC BT /F1 12 Tf 100 500 Td (x) Tj ET",
                                   "0.5 0 0 0.5 0 0 cm 300 300 100 100 re f Q",
                                   "100 100 m 200 200 l",
                                   ""};
    for (const QByteArray& content : contents) {
        SCOPED_TRACE(content.toStdString());
        const string path = files.Path("in.pdf");
        files.Write(
            "in.pdf",
            PdfOf({"<</Type /Catalog /Pages 2 0 R>>", "<</Type /Pages /Kids [3 0 R] /Count 1>>",
                   "<</Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R /Resources <</Font "
                   "<</F1 <</Type /Font /Subtype /Type1 /BaseFont /Helvetica>> >> >> >>",
                   StreamOf(content)}));
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(path, {});
        const float width = PutOnPages(document, image, 1);
        const string out = files.Path("out.pdf");
        document.SaveToPath(out, /*keepSource*/ true, /*takeName*/ false);
        ExpectPlaced(files, document, path, out, 1, width);
    }
}

TEST(TPlacement, WhatChangesAfterASaveIsWrittenAgain) {
    const TWorkspace files;
    const string path = files.Path("in.pdf");
    const string out = files.Path("out.pdf");
    MakePdf(path, 2);
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(path, {});
    auto* text = new TZQPDFText(&document.Pages().getItem(0).Layers());
    text->SetText("first");
    document.SaveToPath(out, /*keepSource*/ true, /*takeName*/ false);
    EXPECT_TRUE(PageTexts(out)[0].contains("first"));
    text->SetText("second");
    document.SaveToPath(out, /*keepSource*/ false, /*takeName*/ true);
    EXPECT_TRUE(PageTexts(out)[0].contains("second"));
    EXPECT_FALSE(PageTexts(out)[0].contains("first"));
    (new TZQPDFText(&document.Pages().getItem(0).Layers()))->SetText("third");
    document.SaveToPath(out, false, true);
    EXPECT_TRUE(PageTexts(out)[0].contains("second"));
    EXPECT_TRUE(PageTexts(out)[0].contains("third"));
}

TEST(TPlacement, AMovedLayerGoesByThePageAsItLiesThen) {
    const TWorkspace files;
    const string path = files.Path("in.pdf");
    MakePdf(path, 1);
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(path, {});
    auto* text = new TZQPDFText(&document.Pages().getItem(0).Layers());
    text->SetText(Token);
    text->MoveTo(136, 146);
    TPDFMargins margins = TPDFMargins::Create(40, 50, 0, 0);
    document.CropPages({}, margins);
    const auto left = [&] {
        document.SaveToPath(path, /*keepSource*/ true, /*takeName*/ false);
        const QRectF place = WordBoxes(path).value(0).value(Token);
        return std::pair(std::lround(place.left()),
                         std::lround(place.top() / 2)); // its height is the font's affair
    };
    const auto kept = left();
    EXPECT_EQ(kept.first, 86) << "the layer went with its page";
    text->MoveTo(86, 106);
    EXPECT_EQ(left(), kept) << "the same place, as the page lies now";
    document.RotatePages({}, 90);
    text->MoveTo(86, 106);
    EXPECT_EQ(left(), kept);
}

TEST(TPlacement, GoesAlongWhenThePageIsCopied) {
    const TWorkspace files;
    const string out = files.Path("out.pdf");
    TZQPDFDocument target(nullptr);
    {
        TZQPDFDocument source(nullptr); // with a blank page that stands in no file yet
        (new TZQPDFText(&source.Pages().getItem(0).Layers()))->SetText(Token);
        ASSERT_EQ(target.ImportPagesFrom(source, "1", -1), 1);
    }
    target.SaveToPath(out, false, true);
    EXPECT_EQ(PageTexts(out), QStringList({QString(), Token}));
    EXPECT_EQ(QpdfCheck(out), 0);
}

TEST_F(TCorpus, WhatIsPutOnAPageLiesThereAndNothingElseChanges) {
    constexpr int PagesLookedAt = 70;
    const TWorkspace files;
    const string image = RedSquare(files);
    const string out = files.Path("out.pdf");
    for (const TCorpusFile& file : CorpusFiles({"ok"})) { // where damage ends is each reader's own opinion
        SCOPED_TRACE(file.Path.toStdString());
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(file.Path, {});
        if (!document.GetCanModify())
            continue;
        const int pages = std::min(document.GetPageCount(), PagesLookedAt);
        const float width = PutOnPages(document, image, pages);
        document.SaveToPath(out, /*keepSource*/ true, /*takeName*/ false);
        EXPECT_LE(QpdfCheck(out), file.QpdfExit == 3 ? 3 : 0);
        ExpectPlaced(files, document, file.Path, out, pages, width);
    }
}

} // namespace
