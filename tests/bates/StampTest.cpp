// Stamped pages as another program reads them.
#include "base/Exceptions.h"
#include "bates/BatesDictionary.h"
#include "engine/GlobalDocument.h"
#include "engine/PdfJudges.h"
#include "engine/layers/LayerText.h"
#include "engine/layers/XObjectGroup.h"

#include <QRectF>
#include <QRegularExpression>

namespace {

/// The boxes of the words of a file of one page, in points from the top left of the displayed page.
QHash<string, QRectF> WordsOf(const string& path) {
    const auto text = QString::fromUtf8(RunProgram("pdftotext", {"-bbox", "-cropbox", path, "-"}).Out);
    static const QRegularExpression pattern(
        R"re(xMin="([-\d.]+)" yMin="([-\d.]+)" xMax="([-\d.]+)" yMax="([-\d.]+)">([^<]*)<)re");
    QHash<string, QRectF> words;
    for (auto i = pattern.globalMatch(text); i.hasNext();) {
        const auto m = i.next();
        words[m.captured(5)] = QRectF(QPointF(m.captured(1).toDouble(), m.captured(2).toDouble()),
                                      QPointF(m.captured(3).toDouble(), m.captured(4).toDouble()));
    }
    return words;
}

class Stamp : public testing::Test {
protected:
    void Open(int pages, const TSampleOptions& options = {}) {
        MakePdf(FFolder.Path("in.pdf"), pages, options);
        FDocument.OpenFromFile(FFolder.Path("in.pdf"), {});
    }
    string Save() {
        const string path = FFolder.Path("out.pdf");
        FDocument.SaveToPath(path, /*keepSource=*/true, /*takeName=*/false);
        EXPECT_EQ(QpdfCheck(path), 0);
        return path;
    }
    /// As content that is placed on the page does: from here on its size is on record.
    void BuildLayers() {
        TZQPDFPage& page = FDocument.Pages().getItem(0);
        page.SetWidth(page.GetWidth());
        page.SetHeight(page.GetHeight());
        page.SetRendered(true);
    }
    /// What stands on each page beside its own "Page n", after stamping the range.
    QStringList Stamped(const string& range) {
        FStore.ApplySchemeToDocument(FDocument, range);
        QStringList texts = PageTexts(Save());
        for (string& text : texts)
            text = text.remove(QRegularExpression("Page \\d+")).simplified();
        return texts;
    }
    TWorkspace FFolder;
    TZQPDFDocument FDocument{nullptr};
    TZQPDFBatesDictionary FStore;
};

} // namespace

TEST_F(Stamp, StandsInTheMarginsOfThePageAsDisplayed) {
    TZQPDFBatesSetting& scheme = FStore.CurrScheme;
    scheme.HeaderLeft = "HeadLeft";
    scheme.HeaderCenter = "HeadMiddle";
    scheme.HeaderRight = "HeadRight";
    scheme.FooterLeft = "FootLeft";
    scheme.FooterCenter = QStringLiteral("Fußmitte");
    scheme.FooterRight = "FootRight";
    scheme.FontStyle = 3;
    scheme.MarginLeft = 50;
    scheme.MarginRight = 20;
    scheme.MarginTop = 40;
    scheme.MarginBottom = 30;
    const struct {
        QByteArray Entries;
        Double Width; // as displayed
        Double Height;
        int Turned = 0; // after the page's layers were built
        TPDFMargins Cut = {};
    } pages[] = {
        {"", 595, 842},
        {"/Rotate 90", 842, 595},
        {"/Rotate 180", 595, 842},
        {"/Rotate 270", 842, 595},
        {"/CropBox[100 120 500 720]", 400, 600},
        {"/CropBox[100 120 500 720]/Rotate 90", 600, 400},
        {"/CropBox[500 720 100 120]/Rotate -90", 600, 400},
        {"", 842, 595, 90},
        {"/Rotate 270", 595, 842, 90},
        {"", 400, 642, 0, TPDFMargins::Create(150, 95, 100, 50)},
        {"/CropBox[100 120 500 720]/Rotate 90", 400, 500, 90, TPDFMargins::Create(50, 0, 0, 50)},
    };
    for (const auto& page : pages) {
        SCOPED_TRACE(page.Entries.toStdString());
        Open(1, {.PageEntries = page.Entries});
        BuildLayers();
        FDocument.RotatePages({}, page.Turned);
        TPDFMargins cut = page.Cut;
        FDocument.CropPages({}, cut);
        FStore.ApplySchemeToDocument(FDocument, {});
        auto words = WordsOf(Save());
        ASSERT_EQ(words.size(), 6 + 2); // and the page's own
        const Double middle = (50 + page.Width - 20) / 2;
        for (const string& row : {string("Head"), string("Foot")}) {
            EXPECT_NEAR(words[row + "Left"].left(), 50, 0.5);
            EXPECT_NEAR(words[row + "Right"].right(), page.Width - 20, 0.5);
        }
        EXPECT_NEAR(words["HeadMiddle"].center().x(), middle, 0.5);
        EXPECT_NEAR(words[QStringLiteral("Fußmitte")].center().x(), middle, 0.5);
        for (auto word = words.begin(); word != words.end(); ++word) {
            if (word.key().startsWith("Head")) { // on the margin's line, the letters' feet a little above it
                EXPECT_NEAR(word->bottom(), 40, 1.5);
                EXPECT_GT(word->width(), word->height()); // upright
            }
            if (word.key().startsWith("Foot")) {
                EXPECT_NEAR(word->top(), page.Height - 30, 1.5);
            }
        }
    }
}

TEST_F(Stamp, NumbersCountStampedPagesAndAreKept) {
    struct TCase {
        string Header;
        string Numbers;
        string Range;
        QStringList Shown;
        string After;
    };
    const TCase cases[] = {
        {"<BN:0:6:10:0>", "", "2 4", {"", "000010", "", "000011"}, "<BN:0:6:10:0>=12"},
        {"<bn:0:6:10:1>", "", "2 4", {"", "000010", "", "000012"}, "<BN:0:6:10:1>=14"},
        {"x<BN:0:6:1:0>", "<BN:0:6:1:0>=5", "1-3", {"x000005", "x000006", "x000007", ""}, "<BN:0:6:1:0>=8"},
        {"[page]/[numpages] [filename] [page+9:3]",
         "",
         "3,2",
         {"", "2/4 in.pdf 011", "3/4 in.pdf 012", ""},
         ""},
        {"<BN:1:1:27:0> <BN:4:1:4:0>", "", "1", {"aa aaIV", "", "", ""}, "<BN:1:1:27:0>=28,<BN:4:1:4:0>=5"},
        {"never", "", "7", {"", "", "", ""}, ""},
    };
    FStore.Prepare(FFolder.Path("schemes.xml"));
    for (const TCase& c : cases) {
        Open(4);
        FStore.CurrScheme.Name = "s";
        FStore.CurrScheme.HeaderLeft = c.Header;
        FStore.BatesStrl = QStringList();
        FStore.FillBatesStrl();
        if (!c.Numbers.isEmpty())
            FStore.BatesStrl = QStringList(c.Numbers);
        EXPECT_EQ(Stamped(c.Range), c.Shown);
        TZQPDFBatesDictionary other;
        other.Prepare(FFolder.Path("schemes.xml"));
        other.GetSchemeByName("s");
        EXPECT_EQ(other.CurrScheme.BatesNumbers, c.After);
    }
}

TEST_F(Stamp, EveryPageGetsItsGroupOfSixTexts) {
    Open(3);
    FStore.CurrScheme.FooterRight = "f";
    FStore.CurrScheme.FontOutline = true;
    FStore.CurrScheme.FontColor = 0xFFFF0000;
    FDocument.Pages().getItem(1).SetRendered(true);
    FStore.ApplySchemeToDocument(FDocument, {});
    ASSERT_EQ(FDocument.XObjects().Count(), 3);
    ASSERT_EQ(FDocument.XObjects().GetItem(2).Count(), 6);
    const auto& text = dynamic_cast<const TZQLayerText&>(FDocument.XObjects().GetItem(2).GetItem(5));
    EXPECT_EQ(text.Text(), "f");
    EXPECT_EQ(text.FillColor(), 0U);
    EXPECT_EQ(text.StrokeColor(), 0xFFFF0000);
    EXPECT_EQ(text.StrokePenWidth(), 1);
    EXPECT_EQ(FDocument.Pages().getItem(0).Layers().Count(), 0);
    EXPECT_EQ(FDocument.Pages().getItem(1).Layers().Count(), 1);
    EXPECT_EQ(GlobalDocument, nullptr);
    EXPECT_EQ(PageTexts(Save()), QStringList({"Page 1\n\nf", "Page 2\n\nf", "Page 3\n\nf"})); // drawn once
}

TEST_F(Stamp, AFailureLeavesWhatWasStampedAndTheFile) {
    Open(3);
    FStore.Prepare(FFolder.Path("schemes.xml"));
    FStore.CurrScheme.HeaderLeft = "<BN:0:1:1:0>";
    FStore.CurrScheme.BatesNumbers = "kept";
    FStore.BatesStrl = QStringList("<BN:0:1:1:0>=2147483646");
    EXPECT_THROW(FStore.ApplySchemeToDocument(FDocument, {}), Exception);
    EXPECT_EQ(FDocument.XObjects().Count(), 1);
    EXPECT_EQ(FStore.CurrScheme.BatesNumbers, "kept");
    EXPECT_FALSE(FFolder.Has("schemes.xml"));
    EXPECT_EQ(GlobalDocument, &FDocument);
    EXPECT_THROW(FStore.ApplySchemeToDocument(FDocument, "no range"), Exception);
}
