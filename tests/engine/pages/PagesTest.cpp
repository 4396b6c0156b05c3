// Pages: geometry, rotation, cropping, inserting, deleting and what has to go with them.
#include "engine/DocumentFixture.h"
#include "testing/Raised.h"

#include <cmath>

namespace {

struct TPages : TDocumentTest {
    using TDocumentTest::Open;
    void Open(int pages, const TSampleOptions& options = {}) { Open(SamplePdf(pages, options)); }
    void Save() {
        TDocumentTest::Save();
        EXPECT_EQ(QpdfCheck(Out), 0);
    }
    QStringList SavedTexts() {
        Save();
        return PageTexts(Out);
    }
};

/// "x0 y0 x1 y1" of a box in a saved page.
QString BoxText(const QJsonValue& box) {
    QStringList numbers;
    for (const QJsonValue& number : box.toArray())
        numbers.append(QString::number(number.toDouble()));
    return numbers.join(u' ');
}

TEST_F(TPages, AttributesAreThoseOfTheUnrotatedCropBox) {
    struct {
        const char* MediaBox;
        const char* Entries;
        float Width, Height; // of the attributes
        int Rotation;
        float ShownWidth, ShownHeight; // of the page
    } const cases[] = {
        {"0 0 200 100", "", 200, 100, 0, 200, 100},
        {"0 0 200 100", "/Rotate 90", 200, 100, 90, 100, 200},
        {"0 0 200 100", "/Rotate -90", 200, 100, 270, 100, 200},
        {"0 0 200 100", "/Rotate 540", 200, 100, 180, 200, 100},
        {"0 0 200 100", "/Rotate 45", 200, 100, 0, 200, 100},
        {"200 100 0 0", "", 200, 100, 0, 200, 100},
        {"-50 -50 150 50", "/CropBox [0 0 900 40]", 150, 40, 0, 150, 40},
        {"0 0 200 100", "/CropBox [300 300 400 400]", 200, 100, 0, 200, 100},
        {"0 0 200 100", "/UserUnit 2 /Rotate 90", 400, 200, 90, 200, 400},
        {"0 0 0 0", "", 612, 792, 0, 612, 792},
        {"0 0 (x) 5", "", 612, 792, 0, 612, 792},
    };
    for (const auto& c : cases) {
        Open(1, {.PageEntries = c.Entries, .MediaBox = c.MediaBox});
        const TPDFPageAttributes attributes = Document.PageTree().PageAttributes(0);
        EXPECT_EQ(attributes.size[0], c.Width) << c.MediaBox << c.Entries;
        EXPECT_EQ(attributes.size[1], c.Height) << c.MediaBox << c.Entries;
        EXPECT_EQ(attributes.Rotation, c.Rotation) << c.Entries;
        EXPECT_EQ(Document.Pages().getItem(0).GetWidth(), c.ShownWidth) << c.MediaBox << c.Entries;
        EXPECT_EQ(Document.Pages().getItem(0).GetHeight(), c.ShownHeight) << c.MediaBox << c.Entries;
    }
}

TEST_F(TPages, NumbersOutsideTheDocumentRaise) {
    Open(2);
    for (const int index : {-1, 2})
        EXPECT_EQ(RaisedBy([&] { static_cast<void>(Document.Pages().getItem(index)); }),
                  QStringLiteral("Page %1 does not exist.").arg(index + 1));
    EXPECT_EQ(RaisedBy([&] { Document.PageTree().SetPage(3); }), "Page 3 does not exist.");
    EXPECT_EQ(RaisedBy([&] { static_cast<void>(Document.PageTree().GetPageAttributes(0)); }),
              "Page 0 does not exist.");
    EXPECT_EQ(Document.PageTree().CurrentPage(), 1);
    EXPECT_THROW(Document.RenderToLayers(2, 72), EPDFError);
}

TEST_F(TPages, RotationAddsToThePagesOwnOnce) {
    Open(4, {.PageEntries = "/Rotate 270"});
    Document.RotatePages("1,3,1", 180);
    Document.RotatePages("2", -630);
    EXPECT_EQ(RaisedBy([&] { Document.RotatePages("1", 45); }),
              "Pages turn by multiples of 90 degrees, not by 45.");
    EXPECT_EQ(Document.PageTree().GetPageAttributes(1).Rotation, 90);
    Save();
    const auto pages = PageDicts(Out);
    EXPECT_EQ(pages[0]["/Rotate"].toInt(), 90);
    EXPECT_EQ(pages[1]["/Rotate"].toInt(), 0);
    EXPECT_EQ(pages[2]["/Rotate"].toInt(), 90);
    EXPECT_EQ(pages[3]["/Rotate"].toInt(), 270);
}

TEST_F(TPages, MarginsAreThoseOfThePageAsDisplayed) {
    struct {
        const char* Entries;
        const char* CropBox;
    } const cases[] = {
        // Top 10, left 20, right 30, bottom 40 of a page from (100, 200) to (400, 600).
        {"", "120 240 370 590"},
        {"/Rotate 90", "110 220 360 570"},
        {"/Rotate 180", "130 210 380 560"},
        {"/Rotate 270", "140 230 390 580"},
        {"/UserUnit 10", "102 204 397 599"},
        {"/CropBox [200 300 300 400]", "220 340 270 390"},
    };
    for (const auto& c : cases) {
        Open(1, {.PageEntries = c.Entries, .MediaBox = "100 200 400 600"});
        TPDFMargins margins = TPDFMargins::Create(10, 20, 30, 40);
        Document.CropPages({}, margins);
        const float width = Document.Pages().getItem(0).GetWidth();
        Save();
        EXPECT_EQ(BoxText(PageDicts(Out)[0]["/CropBox"]), QLatin1String(c.CropBox)) << c.Entries;
        Document.OpenFromFile(Out, {});
        EXPECT_EQ(Document.Pages().getItem(0).GetWidth(), width) << c.Entries;
    }
}

TEST_F(TPages, CroppingEverythingAwayRaisesAndChangesNoPage) {
    QByteArray pdf = SamplePdf(2).replace("/MediaBox [0 0 595 842]", "/MediaBox [0 0 100 100]");
    Open(pdf);
    TPDFMargins margins = TPDFMargins::Create(0, 50, 50, 0);
    EXPECT_EQ(RaisedBy([&] { Document.CropPages({}, margins); }),
              "Cropping by these margins leaves nothing of page 1.");
    margins = TPDFMargins::Create(-20, -20, 30, 30); // a negative margin gives back at most the media box
    Document.CropPages("2", margins);
    EXPECT_EQ(Document.Pages().getItem(0).GetWidth(), 100);
    EXPECT_EQ(Document.Pages().getItem(1).GetWidth(), 70);
}

TEST_F(TPages, BlankPagesGoBeforeOrBehindThePlaceNamed) {
    struct {
        int Index;
        bool Before;
        const char* Texts;
    } const cases[] = {{2, true, "1||2"},  {2, false, "1|2|"},         {1, true, "|1|2"},
                       {0, true, "|1|2"},  {0, false, "|1|2"},         {-9, true, "|1|2"},
                       {99, true, "1|2|"}, {2147483647, false, "1|2|"}};
    for (const auto& c : cases) {
        Open(2);
        Document.InsertPages(c.Index, 1, 300, 200, c.Before);
        EXPECT_EQ(SavedTexts().join(u'|').remove("Page "), QLatin1String(c.Texts)) << c.Index;
    }
    for (const auto& [width, height] : {std::pair(0.F, 5.F), std::pair(5.F, -1.F), std::pair(NAN, 5.F)})
        EXPECT_THROW(Document.InsertPages(1, 1, width, height, true), EPDFError);
    EXPECT_THROW(Document.InsertPages(1, 2'000'000'000, 5, 5, true), EPDFError);
    EXPECT_EQ(Document.GetPageCount(), 3);
}

TEST_F(TPages, DeletingKeepsOnePageAndTellsWhereToGo) {
    Open(5);
    EXPECT_EQ(Document.DeletePageRange({}), 1) << "an empty range deletes nothing";
    EXPECT_EQ(Document.GetPageCount(), 5);
    Document.PageTree().SetPage(5);
    EXPECT_EQ(Document.DeletePageRange("2,5,2,77"), 2);
    EXPECT_EQ(Document.PageTree().CurrentPage(), 3);
    EXPECT_EQ(SavedTexts(), (QStringList{"Page 1", "Page 3", "Page 4"}));
    EXPECT_EQ(Document.DeletePageRange("3"), 2) << "the last page now";
    for (const char* all : {"all", "1-", "even odd"})
        EXPECT_EQ(RaisedBy([&] { Document.DeletePageRange(QLatin1String(all)); }),
                  "A document must keep at least one page.");
    Document.DeletePage(0);
    EXPECT_EQ(RaisedBy([&] { Document.DeletePage(0); }), "A document must keep at least one page.");
    EXPECT_EQ(SavedTexts(), QStringList{"Page 3"});
}

TEST_F(TPages, DeletedPagesReallyLeaveTheFile) {
    Open(4, {.Outlines = true, .Links = true});
    Document.DeletePageRange("2");
    EXPECT_EQ(SavedTexts(), (QStringList{"Page 1", "Page 3", "Page 4"}));
    EXPECT_EQ(CountOfType(Out, "/Page"), 3);
    EXPECT_EQ(CountOfType(Out, "/Pages"), 1);
    QStringList titles;
    for (const QJsonValue& item : PdfJson(Out)["outlines"].toArray())
        titles.append(item.toObject()["title"].toString());
    EXPECT_EQ(titles, (QStringList{"Outline 1", "Outline 3", "Outline 4"}));
    const auto pages = PageDicts(Out);
    EXPECT_EQ(pages[0]["/Annots"].toArray().size(), 0) << "its link led to the page that is gone";
    EXPECT_EQ(pages[1]["/Annots"].toArray().size(), 1);
}

TEST_F(TPages, WhateverLedToADeletedPageIsPruned) {
    // Page 4 goes. Named destinations of both kinds, an open action, a form, an article and structure know
    // it.
    Open(PdfOf({
        "<< /Type /Catalog /Pages 2 0 R /OpenAction [4 0 R /Fit] /Dests << /old [4 0 R /Fit] /kept [3 0 R "
        "/Fit] >>"
        " /Names << /Dests << /Names [(gone) [4 0 R /Fit] (stays) << /D [3 0 R /Fit] >>] >> >>"
        " /AcroForm << /Fields [7 0 R 8 0 R 9 0 R] >> /Threads [12 0 R 15 0 R] /StructTreeRoot 17 0 R"
        " /Outlines 21 0 R /MarkInfo << /Marked true >> >>",
        "<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /MediaBox [0 0 99 99] >>",
        "<< /Type /Page /Parent 2 0 R /Annots [5 0 R 10 0 R] /StructParents 0 >>",
        "<< /Type /Page /Parent 2 0 R /Annots [8 0 R 11 0 R] /StructParents 1 /PieceInfo (private) >>",
        "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A << /S /GoTo /D (gone) >> >>",
        "null",
        "<< /FT /Tx /T (on both) /Kids [10 0 R 11 0 R] >>",
        "<< /FT /Tx /T (on 4) /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 4 0 R >>",
        "<< /FT /Tx /T (nowhere) /V (data) >>",
        "<< /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /Parent 7 0 R /P 3 0 R >>",
        "<< /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /Parent 7 0 R /P 4 0 R >>",
        "<< /Type /Thread /F 13 0 R >>",
        "<< /Type /Bead /T 12 0 R /P 4 0 R /N 14 0 R /V 14 0 R /R [0 0 9 9] >>",
        "<< /Type /Bead /P 3 0 R /N 13 0 R /V 13 0 R /R [0 0 9 9] >>",
        "<< /Type /Thread /F 16 0 R >>",
        "<< /Type /Bead /T 15 0 R /P 4 0 R /N 16 0 R /V 16 0 R /R [0 0 9 9] >>",
        "<< /Type /StructTreeRoot /K [18 0 R] /ParentTree << /Nums [0 [19 0 R] 1 [20 0 R]] >> >>",
        "<< /Type /StructElem /S /Document /P 17 0 R /K [19 0 R 20 0 R] >>",
        "<< /Type /StructElem /S /P /P 18 0 R /Pg 3 0 R /K 0 >>",
        "<< /Type /StructElem /S /P /P 18 0 R /Pg 4 0 R /K [0 << /Type /MCR /Pg 4 0 R /MCID 1 >>] >>",
        "<< /Type /Outlines /First 22 0 R /Last 22 0 R /Count 2 >>",
        "<< /Title (Heading) /Parent 21 0 R /Dest /old /First 23 0 R /Last 24 0 R /Count 2 >>",
        "<< /Title (Dead) /Parent 22 0 R /A << /S /GoTo /D [4 0 R /Fit] >> /Next 24 0 R >>",
        "<< /Title (Alive) /Parent 22 0 R /Dest (stays) /Prev 23 0 R >>",
    }));
    Document.DeletePage(1);
    Save();
    const QByteArray written = RunProgram("qpdf", {"--qdf", Out, "-"}).Out;
    for (const char* gone :
         {"/OpenAction", "/old ", "(gone)", "(on 4)", "(private)", "(Dead)", "/MCR", "/Link"})
        EXPECT_FALSE(written.contains(gone)) << gone;
    for (const char* kept : {"/kept", "(stays)", "(on both)", "(nowhere)", "(Heading)", "(Alive)"})
        EXPECT_TRUE(written.contains(kept)) << kept;
    EXPECT_EQ(CountOfType(Out, "/Page"), 1);
    EXPECT_EQ(CountOfType(Out, "/Annot"), 1);
    EXPECT_EQ(CountOfType(Out, "/Thread"), 1);
    EXPECT_EQ(CountOfType(Out, "/Bead"), 1);
    EXPECT_EQ(CountOfType(Out, "/StructElem"), 2);
    EXPECT_EQ(BoxText(PageDicts(Out)[0]["/MediaBox"]), "0 0 99 99") << "what the old tree passed on";
}

TEST_F(TPages, LabelsFollowTheirPages) {
    const struct {
        const char* Runs;
        const char* Deleted;
        const char* Left;
    } cases[] = {
        {"0 << /S /r >> 2 << /S /D /P (A-) /St 5 >>", "1,4", "0:/r2 1:1 2:u:A-/D5 3:u:A-/D7"},
        // The style and the number go on, the prefix doesn't.
        {"0 << /S /D /P (A-) >> 3 << /S /D /P (B-) /St 3 >>", "3", "0:u:A-/D1 1:1 2:u:A-/D2 3:u:B-/D3"},
        {"0 << /P (Cover) >> 3 << /P (Cover) >> 4 << /P (Back) >>", "6",
         "0:u:Cover1 1:1 2:u:Cover2 5:u:Back1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Runs);
        Open(SamplePdf(6).replace("<< /Type /Catalog",
                                  QByteArray("<< /PageLabels << /Nums [") + c.Runs + "] >> /Type /Catalog"));
        Document.DeletePageRange(QString::fromLatin1(c.Deleted));
        Document.InsertPages(1, 1, 99, 99, /*before*/ false); // has no label
        Save();
        QStringList labels;
        for (const QJsonValue& label : PdfJson(Out)["pagelabels"].toArray()) {
            const QJsonObject entry = label.toObject()["label"].toObject();
            labels.append(QStringLiteral("%1:%2%3%4")
                              .arg(label.toObject()["index"].toInt())
                              .arg(entry["/P"].toString(), entry["/S"].toString())
                              .arg(entry["/St"].toInt(1)));
        }
        EXPECT_EQ(labels.join(u' '), c.Left);
    }
}

TEST_F(TPages, InheritedAttributesAndSharedNodesSurviveReordering) {
    Open(PdfOf({"<< /Type /Catalog /Pages 2 0 R >>",
                "<< /Type /Pages /Count 3 /Kids [3 0 R 6 0 R] /MediaBox [0 0 100 200] /Rotate 90 >>",
                "<< /Type /Pages /Parent 2 0 R /Count 2 /Kids [4 0 R 5 0 R] /CropBox [0 0 50 60] >>",
                "<< /Type /Page /Parent 3 0 R >>", "<< /Type /Page /Parent 3 0 R /Rotate 0 >>",
                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 7 8] >>"}));
    EXPECT_EQ(Document.Pages().getItem(0).GetWidth(), 60);
    EXPECT_EQ(Document.Pages().getItem(1).GetWidth(), 50);
    Document.InsertPages(1, 1, 10, 20, /*before*/ true);
    Save();
    const auto pages = PageDicts(Out);
    EXPECT_EQ(BoxText(pages[1]["/CropBox"]), "0 0 50 60");
    EXPECT_EQ(BoxText(pages[1]["/MediaBox"]), "0 0 100 200");
    EXPECT_EQ(pages[1]["/Rotate"].toInt(), 90);
    EXPECT_EQ(pages[2]["/Rotate"].toInt(), 0);
    EXPECT_EQ(BoxText(pages[3]["/MediaBox"]), "0 0 7 8");
    EXPECT_FALSE(pages[0].contains("/Rotate"));
}

TEST_F(TPages, ManyPagesMakeABalancedTreeInNoTime) {
    Open(3000);
    Document.DeletePageRange("even");
    Document.InsertPages(1, 1500, 50, 50, /*before*/ true);
    Document.RotatePages({}, 90);
    Document.SaveToPath(Out, true, false);
    EXPECT_EQ(QpdfCheck(Out), 0);
    int longest = 0;
    for (const QJsonValue& object : PdfObjects(Out)) {
        const QJsonObject dict = object.toObject()["value"].toObject();
        if (dict["/Type"].toString() == "/Pages")
            longest = std::max(longest, int(dict["/Kids"].toArray().size()));
    }
    EXPECT_EQ(longest, 64);
    const QStringList texts = PageTexts(Out);
    ASSERT_EQ(texts.size(), 3000);
    EXPECT_EQ(texts[1499], "");
    EXPECT_EQ(texts[1500], "Page 1");
    EXPECT_EQ(texts[2999], "Page 2999");
}

} // namespace
