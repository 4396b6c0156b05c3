// Annotations as other programs read and paint them.
#include "engine/DocumentFixture.h"
#include "engine/RenderJudges.h"
#include "engine/annotations/FileAttachmentAnnotation.h"
#include "engine/annotations/FreeTextAnnotation.h"
#include "engine/annotations/LinkAnnotation.h"
#include "engine/annotations/StampAnnotation.h"
#include "engine/annotations/TextAnnotation.h"
#include "engine/annotations/TextWrap.h"
#include "engine/control/Editor.h"
#include "testing/Raised.h"

#include <QRegularExpression>

namespace {

constexpr TColor Green = 0x00416A1C;
constexpr TColor LightGreen = 0x00C7E0C6;
constexpr TColor PaleGreen = 0x00F2F7EB;
constexpr TColor Red = 0x000000FF;
constexpr TColor Yellow = 0x0000FFFF;

struct Annotations : TDocumentTest {
    /// One blank page of 300 by 200 points as displayed.
    void OpenTurned(int rotation, const QByteArray& entries = {}) {
        const bool sideways = rotation % 180 != 0;
        Open(PdfOf({"<</Type /Catalog /Pages 2 0 R>>", "<</Type /Pages /Kids [3 0 R] /Count 1>>",
                    "<</Type /Page /Parent 2 0 R /MediaBox [-7 -9 400 400] /Resources <<>> /CropBox [10 20 " +
                        QByteArray(sideways ? "210 320" : "310 220") + "] /Rotate " +
                        QByteArray::number(rotation) + entries + ">>"}));
    }
    TZQLayerCollection* Layers(int page = 0) { return &Document.Pages().getItem(page).Layers(); }

    void PutOneOfEach() {
        Files.Write("note.txt", "the attached text");
        auto* note = new TZQPDFTextAnnotation(Document, Layers(), 0, 0, "Comment");
        note->SetColor(Red);
        note->SetContents("A remark – 中");
        note->SetAuthor("Somebody");
        auto* file = new TZQPDFFileAttachementAnnotation(Document, Layers(), 280, 5, "paperclip");
        file->SetDiskFilename(Narrow(Files.Path("note.txt")));
        new TZQPDFStampAnnotation(Document, Layers(), 40, 60, Green, LightGreen, PaleGreen, "APPROVED",
                                  "By me", 16);
        auto* box = new TZQPDFFreeTextAnnotation(Document, Layers(), 200, 140, 90, 50);
        box->RichText()->SetText("Free text, wide enough to wrap");
        box->SetColor(Yellow);
        TZQPDFLinkAnnotation::CreateURI(Document, Layers(), 150, 30, 100, 10,
                                        "https://example.org/a b?\xC3\xBC~\x7F");
    }

    /// The first page as we paint it ourselves.
    QImage Painted() {
        const string picture = Files.Path("page.png");
        TZQPDFEditor editor(nullptr);
        editor.setDocument(&Document);
        editor.SaveGraphicPageToBitmap(Narrow(picture), RenderDpi);
        return QImage(picture).convertToFormat(QImage::Format_RGB32);
    }

    /// The annotations of a page, by their subtype.
    [[nodiscard]] QMap<string, QJsonObject> Written(int page = 0) const {
        const QJsonObject objects = PdfObjects(Out);
        QMap<string, QJsonObject> found;
        for (const QJsonValue& reference : PageDicts(Out).at(page).value("/Annots").toArray()) {
            const QJsonObject one = DictOf(objects, reference);
            found.insert(one.value("/Subtype").toString(), one);
        }
        return found;
    }
};

/// The number of the page, from 1, that a link leads to; 0 for none.
int TargetOf(const string& path, const QJsonObject& link) {
    const string object = link.value("/Dest").toArray().at(0).toString();
    int number = 0;
    for (const QJsonValue& page : PdfJson(path).value("pages").toArray()) {
        ++number;
        if (page.toObject().value("object").toString() == object)
            return number;
    }
    return 0;
}

} // namespace

TEST_F(Annotations, StandUprightWhereTheyWerePutOnEveryPage) {
    OpenTurned(0);
    PutOneOfEach();
    Save();
    const QImage poppler = RenderedBy(TRenderer::Poppler, Out);
    const QImage mupdf = RenderedBy(TRenderer::MuPdf, Out);
    ASSERT_EQ(poppler.size(), QSize(600, 400));
    const auto yellow = [](QColor c) { return c.red() > 240 && c.green() > 240 && c.blue() < 40; };
    const auto red = [](QColor c) { return c.red() > 200 && c.green() < 60 && c.blue() < 60; };
    for (const QImage& image : {poppler, mupdf}) {
        EXPECT_EQ(InkBox(image, yellow), QRectF(200, 140, 90, 50));
        EXPECT_TRUE(QRectF(0, 0, 20, 20).contains(InkBox(image, red)));
        EXPECT_GT(InkBox(image, red).height(), 10);
        EXPECT_EQ(image.pixel(300, 40), 0xFFFFFFFF); // nothing is seen of the link
    }
    EXPECT_LT(ShareOfDifference(poppler, mupdf), 0.01);
    const QImage painted = Painted();
    EXPECT_LT(ShareOfDifference(painted, mupdf), 0.01);

    for (const int rotation : {90, 180, 270}) {
        OpenTurned(rotation);
        PutOneOfEach();
        Save();
        EXPECT_EQ(QpdfCheck(Out), 0);
        EXPECT_LT(ShareOfDifference(RenderedBy(TRenderer::Poppler, Out), poppler), 0.003) << rotation;
        EXPECT_LT(ShareOfDifference(RenderedBy(TRenderer::MuPdf, Out), mupdf), 0.003) << rotation;
        EXPECT_LT(ShareOfDifference(Painted(), painted), 0.003) << rotation;
    }
    // A unit of two points: places and sizes stay points.
    OpenTurned(90, " /UserUnit 2");
    PutOneOfEach();
    Save();
    EXPECT_EQ(InkBox(RenderedBy(TRenderer::MuPdf, Out), yellow), QRectF(200, 140, 90, 50));
}

TEST_F(Annotations, CarryWhatViewersAskFor) {
    OpenTurned(0);
    PutOneOfEach();
    Save();
    const QMap<string, QJsonObject> all = Written();
    const string page = PdfJson(Out).value("pages").toArray().at(0).toObject().value("object").toString();
    struct TCase {
        const char* Subtype;
        int Flags;
        string Contents;
        const char* Name;
    };
    QSet<string> identities;
    for (const TCase& row :
         {TCase{"/Text", 20, "u:A remark – 中", "/Comment"},
          TCase{"/FileAttachment", 4, "u:note.txt", "/Paperclip"},
          TCase{"/Stamp", 4, "u:APPROVED", "/APPROVED"},
          TCase{"/FreeText", 4, "u:Free text, wide enough to wrap", ""}, TCase{"/Link", 4, "", ""}}) {
        SCOPED_TRACE(row.Subtype);
        const QJsonObject one = all.value(row.Subtype);
        EXPECT_EQ(one.value("/F").toInt(), row.Flags);
        EXPECT_EQ(one.value("/Contents").toString(), row.Contents);
        EXPECT_EQ(one.value("/Name").toString(), row.Name);
        EXPECT_EQ(one.value("/P").toString(), page);
        EXPECT_EQ(one.value("/AP").toObject().contains("/N"), row.Subtype != string("/Link"));
        identities.insert(one.value("/NM").toString());
    }
    EXPECT_EQ(identities.size(), 5);
    EXPECT_EQ(all.value("/Text").value("/T").toString(), "u:Somebody");
    EXPECT_EQ(all.value("/Text").value("/C").toArray(), QJsonArray({1, 0, 0}));
    EXPECT_EQ(all.value("/Stamp").value("/Subj").toString(), "u:By me");
    EXPECT_EQ(all.value("/Link").value("/A").toObject().value("/URI").toString(),
              "u:https://example.org/a%20b?%C3%BC~%7F");
    EXPECT_EQ(all.value("/Link").value("/Rect").toArray(), QJsonArray({110, 190, 160, 210}));

    const QJsonObject objects = PdfObjects(Out);
    const QJsonObject spec = DictOf(objects, all.value("/FileAttachment").value("/FS"));
    EXPECT_EQ(spec.value("/UF").toString(), "u:note.txt");
    const string stream = spec.value("/EF").toObject().value("/UF").toString();
    EXPECT_EQ(
        RunProgram("qpdf", {"--show-object=" + stream.section(' ', 0, 0), "--filtered-stream-data", Out}).Out,
        "the attached text");
    const QJsonObject dict = DictOf(objects, stream);
    EXPECT_EQ(dict.value("/Params").toObject().value("/Size").toInt(), 17);
    EXPECT_EQ(dict.value("/Subtype").toString(), "/text/plain");
}

TEST_F(Annotations, LinkFollowsItsPage) {
    Open(SamplePdf(5));
    const auto link = [&](int target) {
        new TZQPDFLinkAnnotation(Document.Pages().getItem(target - 1), Layers());
    };
    EXPECT_THROW(link(6), EPDFError);
    EXPECT_EQ(RaisedBy([&] { link(0); }), "Page 0 does not exist.");
    link(3);
    Document.InsertPages(1, 2, 100, 100, /*before*/ false); // before the target, which is now page 5
    Document.DeletePage(3);                                 // page 2 of old
    Save();
    EXPECT_EQ(TargetOf(Out, Written().value("/Link")), 4);

    TZQPDFDocument other(nullptr); // pages that are taken over together take their link along
    other.ImportPagesFrom(Document, "1,4", -1);
    other.SaveToPath(Out, /*keepSource*/ true, /*takeName*/ false);
    EXPECT_EQ(TargetOf(Out, Written(1).value("/Link")), 3);

    Document.DeletePage(3); // the target
    Save();
    EXPECT_TRUE(Written().isEmpty());
    link(2);
    Document.DeletePage(1);
    Save();
    EXPECT_TRUE(Written().isEmpty());
}

TEST_F(Annotations, FreeTextWrapsInItsBox) {
    OpenTurned(0);
    const string text = "The quick brown fox jumps over Donaudampfschifffahrtsgesellschaftskapitaen.\nNext";
    auto* box = new TZQPDFFreeTextAnnotation(Document, Layers(), 50, 20, 100, 0);
    box->RichText()->SetText(text);
    Save();
    const string structured =
        QString::fromUtf8(RunProgram("mutool", {"draw", "-q", "-F", "stext", "-o", "-", Out}).Out);
    static const QRegularExpression linePattern("<line bbox=\"(\\S+) (\\S+) (\\S+) (\\S+)\".*?</line>",
                                                QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression charPattern(" c=\"(.)\"");
    QStringList lines;
    for (const auto& line : linePattern.globalMatch(structured)) {
        EXPECT_GE(line.captured(1).toDouble(), 50);
        EXPECT_GE(line.captured(2).toDouble(), 19);
        EXPECT_LE(line.captured(3).toDouble(), 150);
        EXPECT_LE(line.captured(4).toDouble(), 20 + Double(box->Height()) + 1);
        lines.append(string());
        for (const auto& c : charPattern.globalMatch(line.captured(0)))
            lines.last() += c.captured(1);
    }
    EXPECT_EQ(lines.value(0).trimmed(), "The quick brown");
    EXPECT_EQ(lines.size(), 6) << lines.join('|').toStdString();
    EXPECT_EQ(lines.value(5), "Next");
    EXPECT_EQ(lines.join("").remove(' '), QString(text).remove(' ').remove('\n'));

    // A box that is too narrow for any of them has a letter on each line.
    const auto letters = WrapText("a\u0301bc d", {}, 1, 1000);
    ASSERT_EQ(letters.size(), 4U);
    EXPECT_EQ(letters[0].Text, "a\u0301");
    EXPECT_EQ(letters[2].Text, "c");

    box->SetHeight(30); // too low: the text is cut where it is seen, and kept
    box->SetColor(Yellow);
    const string identity = Written().value("/FreeText").value("/NM").toString();
    Save();
    EXPECT_EQ(Written().value("/FreeText").value("/Contents").toString(), "u:" + text);
    EXPECT_EQ(Written().value("/FreeText").value("/NM").toString(), identity);
    EXPECT_EQ(PageDicts(Out).at(0).value("/Annots").toArray().size(), 1); // changed, not added
    EXPECT_EQ(InkBox(RenderedBy(TRenderer::MuPdf, Out), [](QColor c) { return c != QColor(Qt::white); }),
              QRectF(50, 20, 100, 30));
}
