// Pages as pictures: compared with what another program paints.
#include "engine/PdfJudges.h"
#include "engine/control/Editor.h"
#include "engine/document/Document.h"
#include "testing/Corpus.h"
#include "testing/Raised.h"

#include <QImage>

#include <cmath>
#include <thread>

namespace {

struct TRender : testing::Test {
    const TWorkspace Files;
    const string In = Files.Path("in.pdf");
    TZQPDFDocument Document{nullptr};

    /// Writes the picture of a page and reads it again.
    QImage Picture(int page, int dpi, const string& name = "page.png") {
        TZQPDFEditor editor(nullptr);
        editor.setDocument(&Document);
        editor.SetCurrentPage(page);
        editor.SaveGraphicPageToBitmap(Narrow(Files.Path(name)), dpi);
        return QImage(Files.Path(name));
    }
    /// What another program makes of the page of a saved file.
    [[nodiscard]] QImage Judged(const string& path, int page, int dpi,
                                const QStringList& options = {}) const {
        const QString number = QString::number(page);
        const auto result = RunProgram(
            "pdftoppm", options + QStringList{"-f", number, "-l", number, "-r", QString::number(dpi), "-png",
                                              "-singlefile", "-cropbox", path, Files.Path("judge")});
        EXPECT_EQ(result.Exit, 0) << result.Errors.toStdString();
        return QImage(Files.Path("judge.png"));
    }
    string Message(const string& name, int dpi) {
        return RaisedBy([&] { Picture(1, dpi, name); });
    }
};

/// Mean difference of the channels, 0 to 255, where both pictures are blurred to a quarter of their size:
/// renderers place edges differently.
double Difference(const QImage& a, const QImage& b) {
    const QSize size = (a.size() / 4).expandedTo({1, 1});
    const auto small = [&](const QImage& image) {
        return image.convertToFormat(QImage::Format_RGB32)
            .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    };
    const QImage left = small(a);
    const QImage right = small(b);
    double sum = 0;
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const QRgb l = left.pixel(x, y);
            const QRgb r = right.pixel(x, y);
            sum += (std::abs(qRed(l) - qRed(r)) + std::abs(qGreen(l) - qGreen(r)) +
                    std::abs(qBlue(l) - qBlue(r))) /
                   3.0;
        }
    return sum / size.width() / size.height();
}

TEST_F(TRender, PagesLookAsInAnotherProgram) {
    struct TPage {
        string Path;
        int Page;
        const char* Password;
    };
    QList<TPage> pages{{CorpusFiles({"needs-password"})[0].Path, 2, "secret"}};
    for (const TCorpusFile& file : CorpusFiles({"ok"}).mid(0, 3)) // made ones
        pages.append({file.Path, file.Pages, ""});
    const TPage further[] = {
        {"plain/pdflatex-4-pages.pdf", 2, ""},
        {"plain/two-different-pages.pdf", 1, ""},
        {"plain/no-resources.pdf", 1, ""},
        {"images/jbig2-rotated-270.pdf", 1, ""},
        {"images/scan-with-ocr-jbig2-jpx.pdf", 1, ""}, // with optional content
        {"forms/libreoffice-form.pdf", 1, ""},
        {"forms/xfa-government-form.pdf", 1, ""},
        {"forms/AcroFormsBasicFields.pdf", 1, ""},
        {"annotations/commented-incremental.pdf", 1, ""},
        {"encrypted/aes-256-r6-user-owner.pdf", 1, "foo"},
        {"encrypted/rc4-40-user-owner.pdf", 1, "user"},
    };
    if (HasCorpus())
        for (const TPage& page : further)
            pages.append({QStringLiteral(CORPUS_FOLDER "/") + page.Path, page.Page, page.Password});
    for (const TPage& c : pages) {
        SCOPED_TRACE(c.Path.toStdString());
        Document.OpenFromFile(c.Path, c.Password);
        const QImage ours = Picture(c.Page, 100);
        const QImage theirs = Judged(c.Path, c.Page, 100, {"-upw", QString::fromUtf8(c.Password)});
        EXPECT_LE(std::abs(ours.width() - theirs.width()), 1);
        EXPECT_LE(std::abs(ours.height() - theirs.height()), 1);
        EXPECT_LT(Difference(ours, theirs), 6) << "mean difference"; // a missing widget or image makes more
    }
}

/// Left to right: paper, red multiplied on it, a hidden layer, a shown one, an inherited image in blue. The
/// rest of the media box, which the crop box leaves out, is black.
QByteArray Striped(const QByteArray& pageEntries = {}) {
    return PdfOf(
        {"<< /Type /Catalog /Pages 2 0 R /OCProperties << /OCGs [5 0 R 6 0 R] "
         "/D << /OFF [5 0 R] >> >> >>",
         "<< /Type /Pages /Count 1 /Kids [3 0 R] /CropBox [20 30 120 70] /Resources << "
         "/ExtGState << /M << /BM /Multiply >> >> /Properties << /A 5 0 R /B 6 0 R >> "
         "/XObject << /X 7 0 R >> >> >>",
         "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] /Contents 4 0 R " + pageEntries + " >>",
         StreamOf("0 g 0 0 20 100 re 120 0 80 100 re 0 0 200 30 re 0 70 200 30 re f "
                  "q /M gs 1 0 0 rg 40 30 20 40 re f Q "
                  "/OC /A BDC 0 g 60 30 20 40 re f EMC /OC /B BDC 0 1 0 rg 80 30 20 40 re f EMC "
                  "q 20 0 0 40 100 30 cm /X Do Q"),
         "<< /Type /OCG /Name (hidden) >>", "<< /Type /OCG /Name (shown) >>",
         StreamOf(QByteArray("\x00\x00\xFF", 3), "/Subtype /Image /Width 1 /Height 1 "
                                                 "/ColorSpace /DeviceRGB /BitsPerComponent 8")});
}

/// The colours in the middle of five equal parts of a picture, along its longer side.
QString Stripes(const QImage& image) {
    QString names;
    for (int i = 0; i < 5; ++i) {
        const bool wide = image.width() > image.height();
        const QPoint at(wide ? image.width() * (2 * i + 1) / 10 : image.width() / 2,
                        wide ? image.height() / 2 : image.height() * (2 * i + 1) / 10);
        const QRgb pixel = image.pixel(at) & 0xFFFFFF;
        names += pixel == 0xFFFFFF   ? u'w'
                 : pixel == 0xFF0000 ? u'r'
                 : pixel == 0x00FF00 ? u'g'
                 : pixel == 0x0000FF ? u'b'
                                     : u'?';
    }
    return names;
}

TEST_F(TRender, UnsavedPagesAreTakenAsTheyWouldBeSaved) {
    const auto expect = [&](int page, const QString& stripes, QSize size) {
        const QImage picture = Picture(page, 144);
        EXPECT_EQ(Stripes(picture), stripes);
        EXPECT_EQ(picture.size(), size);
    };
    Files.Write("in.pdf", Striped("/UserUnit 2"));
    Document.OpenFromFile(In, {});
    expect(1, "wrwgb", {400, 160});
    Files.Write("in.pdf", Striped("/Rotate 180"));
    Document.OpenFromFile(In, {});
    expect(1, "bgwrw", {200, 80});
    Document.RotatePages({}, 90);
    expect(1, "bgwrw", {80, 200}); // from the top
    TPDFMargins margins = TPDFMargins::Create(0, 0, 0, 80);
    Document.CropPages({}, margins);
    expect(1, "bbbbb", {80, 40});

    TZQPDFDocument other(nullptr); // pages that no file holds yet
    other.OpenFromFile(Files.Write("other.pdf", Striped()), {});
    Document.ImportPagesFrom(other, "1", -1);
    expect(2, "wrwgb", {200, 80});
    Document.InsertPages(1, 1, 50, 20, /*before*/ true);
    expect(1, "wwwww", {100, 40});
    EXPECT_TRUE(Document.GetModified());
    Document.SaveToPath(Files.Path("out.pdf"), /*keepSource*/ true, /*takeName*/ false);
    EXPECT_EQ(Stripes(Judged(Files.Path("out.pdf"), 3, 144)), "wrwgb") << "saving still works";
}

TEST_F(TRender, TheExtensionChoosesTheFormat) {
    Files.Write("in.pdf", Striped());
    Document.OpenFromFile(In, {});
    for (const char* name : {"a.png", "a.jpg", "a.JPEG", "a.tif", "a.tiff", "\xC3\xA4 \xE6\x97\xA5.bmp"}) {
        const QImage picture = Picture(1, 150, QString::fromUtf8(name));
        EXPECT_EQ(picture.size(), QSize(208, 83)) << name;
        EXPECT_NEAR(picture.dotsPerMeterX() * 0.0254, 150, 0.5) << name;
        EXPECT_NEAR(picture.dotsPerMeterY() * 0.0254, 150, 0.5) << name;
        EXPECT_FALSE(picture.hasAlphaChannel()) << name;
    }
    const QStringList before = Files.Names();
    EXPECT_TRUE(Message("a.gif", 150).contains(".png, .jpg"));
    EXPECT_TRUE(Message("png", 150).contains("Cannot write"));
    EXPECT_TRUE(Message("b.png", 0).contains("0 dots per inch"));
    EXPECT_TRUE(Message("b.png", -72).contains("-72 dots per inch"));
    EXPECT_TRUE(Message("b.png", 2'000'000'000).contains("too many"));
    EXPECT_TRUE(Message("b.png", 50'000).contains("69444 x 27778 pixels"));
    EXPECT_NE(Message("nowhere/b.png", 72), "");
    EXPECT_EQ(Files.Names(), before);
}

TEST_F(TRender, AnyThreadPaints) {
    Files.Write("in.pdf", Striped());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([this, i] {
            TZQPDFDocument document(nullptr);
            document.OpenFromFile(In, {});
            TZQPDFEditor editor(nullptr);
            editor.setDocument(&document);
            for (int k = 0; k < 5; ++k)
                editor.SaveGraphicPageToBitmap(Narrow(Files.Path(QString::number(i) + ".png")), 72);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(Stripes(QImage(Files.Path(QString::number(i) + ".png"))), "wrwgb");
}

TEST(Editor, KeepsInStepAndComesAndGoesInAnyOrder) {
    auto document = std::make_unique<TZQPDFDocument>(nullptr);
    document->InsertPages(1, 3, 100, 100, /*before*/ true);
    auto first = std::make_unique<TZQPDFEditor>(nullptr);
    first->setDocument(document.get());
    {
        TZQPDFEditor second(nullptr);
        second.setDocument(document.get());
        EXPECT_EQ(document->Editor(), first.get());
        second.SetCurrentPage(2);
        EXPECT_THROW(second.SetCurrentPage(5), EPDFError);
        EXPECT_EQ(second.CurrentPage(), 2);
    }
    EXPECT_EQ(document->Editor(), first.get());
    first->SetCurrentPage(3);
    first->InsertPages(1, 2, 50, 50, /*before*/ true);
    EXPECT_EQ(first->CurrentPage(), 5); // the same page
    EXPECT_EQ(document->PageTree().CurrentPage(), 5);
    first->DeletePagesEx("4-6");
    EXPECT_EQ(first->CurrentPage(), 3);
    document->DeletePage(2);
    EXPECT_EQ(first->CurrentPage(), 2);
    first.reset();
    EXPECT_EQ(document->Editor(), nullptr);
    TZQPDFEditor third(nullptr);
    third.setDocument(document.get());
    document.reset();
    EXPECT_THROW(static_cast<void>(third.CurrentPage()), EPDFError);
    EXPECT_THROW(third.SaveGraphicPageToBitmap("x.png", 72), EPDFError);
}

} // namespace
