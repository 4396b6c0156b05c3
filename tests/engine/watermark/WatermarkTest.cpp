// Watermarks as other programs find them.
#include "engine/DocumentFixture.h"
#include "engine/RenderJudges.h"
#include "engine/images/SampleImages.h"
#include "engine/layers/XObjectGroup.h"
#include "engine/watermark/EditorApp.h"
#include "engine/watermark/ObjectsRepository.h"
#include "engine/watermark/WatermarkSettings.h"

namespace {

using H = TPDFHorizontalPosition;
using V = TPDFVerticalPosition;

struct Watermark : TDocumentTest {
    /// Pages of 300 by 200 points as displayed, blank.
    static QByteArray TurnedPages(const QList<int>& rotations) {
        QList<QByteArray> objects{"<</Type /Catalog /Pages 2 0 R>>", {}};
        QByteArray kids;
        for (const int rotation : rotations) {
            kids += QByteArray::number(objects.size() + 1) + " 0 R ";
            objects.append(
                "<</Type /Page /Parent 2 0 R /MediaBox [0 0 500 500] /Resources <<>> /CropBox [10 20 " +
                QByteArray(rotation % 180 != 0 ? "210 320" : "310 220") + "] /Rotate " +
                QByteArray::number(rotation) + ">>");
        }
        objects[1] =
            "<</Type /Pages /Kids [" + kids + "] /Count " + QByteArray::number(rotations.size()) + ">>";
        return PdfOf(objects);
    }
    void Put(const TPDFWatermarkSettings& settings) {
        Document.updateWatermark(*settings.CreateXObject(Document, /*cached*/ true));
    }
    /// 40 by 20 points, its left half red, its right half blue.
    string TwoColours() const {
        TSampleImage image{40, 20, 8, 3, {}};
        for (int i = 0; i < 20; ++i)
            image.Rows += QByteArray("\xFF\0\0", 3).repeated(20) + QByteArray("\0\0\xFF", 3).repeated(20);
        return Files.Write("two.png", PngOf(image));
    }
};

bool IsInk(QColor c) {
    return c.lightness() < 250;
}

void ExpectNear(const QRectF& found, const QRectF& expected, const char* what) {
    EXPECT_NEAR(found.left(), expected.left(), 0.76) << what;
    EXPECT_NEAR(found.top(), expected.top(), 0.76) << what;
    EXPECT_NEAR(found.right(), expected.right(), 0.76) << what;
    EXPECT_NEAR(found.bottom(), expected.bottom(), 0.76) << what;
}

} // namespace

TEST_F(Watermark, StandsInItsPlaceOnThePageAsDisplayed) {
    struct TCase {
        Single Rotation, Scale;
        H Horizontal;
        V Vertical;
        Single OffsetX, OffsetY;
        QRectF Red; ///< the left half
        QRectF Blue;
    };
    const TCase rows[] = {
        {0, 1, H::hpCenter, V::vpCenter, 0, 0, {130, 90, 20, 20}, {150, 90, 20, 20}},
        {0, 2, H::hpLeft, V::vpTop, 10, 5, {10, 5, 40, 40}, {50, 5, 40, 40}},
        {90, 1, H::hpRight, V::vpBottom, -10, -5, {270, 175, 20, 20}, {270, 155, 20, 20}},
        {180, 1, H::hpCenter, V::vpBottom, 0, 0, {150, 180, 20, 20}, {130, 180, 20, 20}},
        // Corners: half the diagonals of the whole, (40 + 20) / sqrt(2) / 2, around the middle.
        {45, 1, H::hpCenter, V::vpCenter, 0, 0, {128.79, 92.93, 28.28, 28.28}, {142.93, 78.79, 28.28, 28.28}},
    };
    TPDFWatermarkSettings settings;
    settings.FImageFile = TwoColours();
    settings.FOpacity = 1;
    for (const TCase& row : rows) {
        Open(TurnedPages({0, 90, 180, 270}));
        settings.FRotation = row.Rotation;
        settings.FScale = row.Scale;
        settings.FHorizontal = row.Horizontal;
        settings.FVertical = row.Vertical;
        settings.FOffsetX = row.OffsetX;
        settings.FOffsetY = row.OffsetY;
        Put(settings);
        Save();
        for (int page = 1; page <= 4; ++page)
            for (const TRenderer renderer : {TRenderer::Poppler, TRenderer::MuPdf}) {
                const QImage image = RenderedBy(renderer, Out, page);
                ExpectNear(InkBox(image, [](QColor c) { return c.red() > 150 && c.blue() < 100; }), row.Red,
                           "red");
                ExpectNear(InkBox(image, [](QColor c) { return c.blue() > 150 && c.red() < 100; }), row.Blue,
                           "blue");
            }
    }
}

TEST_F(Watermark, TextIsCentredAndAnArtifact) {
    Open(TurnedPages({0, 90, 180, 270}));
    TPDFWatermarkSettings settings;
    settings.FText = "HHXHH\nHHXHH";
    settings.FFontSize = 30;
    Put(settings);
    Save();
    EXPECT_EQ(QpdfCheck(Out), 0);
    for (int page = 1; page <= 4; ++page) {
        const QRectF ink = InkBox(RenderedBy(TRenderer::Poppler, Out, page), IsInk);
        EXPECT_NEAR(ink.center().x(), 150, 1.5); // capitals stand a little off the middle of their line
        EXPECT_NEAR(ink.center().y(), 100, 1.5);
        EXPECT_NEAR(ink.width(), ink.height(), 1);
    }
    EXPECT_TRUE(RunProgram("qpdf", {"--qdf", "--object-streams=disable", Out, "-"})
                    .Out.contains("/Artifact <</Type /Pagination /Subtype /Watermark>> BDC"));
}

TEST_F(Watermark, IsMadeOnceForPagesOfASize) {
    struct TCase {
        QList<int> Pages;
        int Forms; ///< the text, and its place on each kind of page
    };
    for (const TCase& row : {TCase{QList<int>(50, 0), 2}, TCase{{0, 90, 0, 90}, 3}}) {
        Open(TurnedPages(row.Pages));
        TPDFWatermarkSettings settings;
        settings.FText = "Draft";
        Put(settings);
        Save();
        EXPECT_EQ(CountOfType(Out, "/XObject"), row.Forms);
        EXPECT_EQ(PageTexts(Out).size(), row.Pages.size());
    }
}

TEST_F(Watermark, LiesBehindOrInFrontAndIsAsClearAsItSays) {
    const QByteArray black = "0 g 150 0 300 500 re f"; // the right half
    struct TCase {
        Single Opacity;
        bool Behind;
        int OnWhite, OnBlack; ///< red, with green and blue 0 there
    };
    for (const TCase& row : {TCase{1, false, 0, 255}, TCase{0.5, false, 127, 128}, TCase{0.5, true, 127, 0},
                             TCase{0, false, 255, 0}}) {
        Open(PdfOf({"<</Type /Catalog /Pages 2 0 R>>", "<</Type /Pages /Kids [3 0 R] /Count 1>>",
                    "<</Type /Page /Parent 2 0 R /MediaBox [0 0 300 200] /Contents 4 0 R>>",
                    StreamOf(black)}));
        TPDFWatermarkSettings settings;
        settings.FText = "MMM"; // overlaps itself, and the part seen twice is no darker
        settings.FImageFile = Files.Write("red.png", PngOf({2, 1, 8, 3, QByteArray("\xFF\0\0\xFF\0\0", 6)}));
        settings.FRotation = 0;
        settings.FScale = 50;
        settings.FOpacity = row.Opacity;
        settings.FBehindContent = row.Behind;
        Put(settings);
        Save();
        const QImage image = RenderedBy(TRenderer::Poppler, Out);
        EXPECT_NEAR(qGreen(image.pixel(260, 200)), row.OnWhite, 3);
        EXPECT_NEAR(qRed(image.pixel(260, 200)), 255, 3);
        EXPECT_NEAR(qRed(image.pixel(340, 200)), row.OnBlack, 3);
    }
}

TEST_F(Watermark, GoesOnThePagesOfItsRange) {
    Open(SamplePdf(4));
    TPDFWatermarkSettings settings;
    settings.FText = "Draft";
    settings.FRotation = 0;
    settings.FPageRange = "2-3, 2";
    Put(settings);
    Document.SetModified(false);
    settings.FPageRange = "two";
    EXPECT_THROW(Put(settings), EPDFError);
    EXPECT_FALSE(Document.GetModified());
    settings.FText.clear(); // shows nothing
    settings.FPageRange.clear();
    Put(settings);
    Save();
    QStringList marks;
    for (const QString& text : PageTexts(Out))
        marks.append(QString::number(text.count("Draft")));
    EXPECT_EQ(marks.join(' '), "0 1 1 0");
}

TEST_F(Watermark, SettingsAndStampsAreKeptInFiles) {
    TPDFWatermarkSettings settings;
    settings.FText = "Two\nlines";
    settings.FVertical = V::vpBottom;
    settings.FOpacity = 0.25F;
    settings.FBehindContent = true;
    settings.SaveToFile(Files.Path("mark.xml"));
    const QByteArray xml = Files.Read("mark.xml");
    EXPECT_TRUE(xml.contains("<VerticalPosition>vpBottom</VerticalPosition>")) << xml.toStdString();
    EXPECT_EQ(xml.count("</"), 16) << "15 members and the root"; // moc drops members without a word
    TPDFWatermarkSettings loaded;
    loaded.LoadFromFile(Files.Path("mark.xml"));
    TPDFWatermarkSettings copied;
    copied.Assign(&loaded);
    copied.SaveToFile(Files.Path("copy.xml"));
    EXPECT_EQ(Files.Read("copy.xml"), xml);

    qputenv("XDG_CONFIG_HOME", Files.Path("settings").toUtf8());
    Files.Write("settings/morvane/settings.ini", "ConfigurationFolder=/srv/agent/lists");
    EXPECT_EQ(TPDFEditorApp::WatermarksFolder(), "/srv/agent/watermarks/");
    EXPECT_EQ(TPDFEditorApp::RepositoryFilename(), "/srv/agent/repository.xml");
    Files.Write("settings/morvane/settings.ini", "WatermarksFolder=%HOME%/a,b/");
    EXPECT_EQ(TPDFEditorApp::WatermarksFolder(), QDir::homePath() + "/a,b/");

    Files.Write("stamps.xml", R"(<ObjectsRepository><Categories>
        <Category><Name>Office</Name><Stamps><Stamp>Paid</Stamp><Stamp>Sent</Stamp></Stamps></Category>
        <Category><Name>Empty</Name></Category>
        </Categories></ObjectsRepository>)");
    const QMap<string, QStringList> expected{{"Office", {"Paid", "Sent"}}, {"Empty", {}}};
    EXPECT_EQ(TZQPDFObjectsRepository(Files.Path("stamps.xml")).GetCategories(), expected);
    EXPECT_TRUE(TZQPDFObjectsRepository(Files.Path("none.xml")).GetCategories().isEmpty());
}
