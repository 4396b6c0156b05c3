// Outlines: walking, adding, where items lead after a save, damage.
#include "engine/DocumentFixture.h"
#include "testing/Raised.h"

#include <QPointer>

namespace {

struct TOutlines : TDocumentTest {
    using TDocumentTest::Open;
    void Open(int pages, const TSampleOptions& options = {}) { Open(SamplePdf(pages, options)); }
    TPDFIndirect* Add(TPDFIndirect* parent, const char* text, int page,
                      TPDFLinkDestKind kind = TPDFLinkDestKind::ldFit) {
        return Document.NewOutline(parent, text, page, kind);
    }
    /// "Title>page (child>page ...)" of each item, as another program reads the saved file; "+" before an
    /// open item. The chain of each level must hold together both ways.
    QString Saved() {
        Save();
        return Written();
    }
    [[nodiscard]] QString Written() const {
        EXPECT_EQ(QpdfCheck(Out), 0);
        const QJsonObject objects = PdfObjects(Out);
        int shown = 0;
        const QJsonObject trailer = objects["trailer"].toObject()["value"].toObject();
        const QString root = DictOf(objects, trailer["/Root"])["/Outlines"].toString();
        CheckLinks(objects, root, shown);
        return Text(PdfJson(Out).value("outlines").toArray());
    }

private:
    static QString Text(const QJsonArray& items) {
        QStringList texts;
        for (const QJsonValue& item : items) {
            QString text = item[QStringLiteral("title")].toString() + u'>' +
                           QString::number(item[QStringLiteral("destpageposfrom1")].toInt());
            const QJsonArray kids = item[QStringLiteral("kids")].toArray();
            if (!kids.isEmpty())
                text = (item[QStringLiteral("open")].toBool() ? QStringLiteral("+") : QString()) + text +
                       u'(' + Text(kids) + u')';
            texts.append(text);
        }
        return texts.join(u' ');
    }
    /// Gives the items below `parent` that are shown when it is open.
    static void CheckLinks(const QJsonObject& objects, const QString& parent, int& shown) {
        const QJsonObject above = DictOf(objects, parent);
        QString before;
        QString at = above.value("/First").toString();
        for (int guard = 0; !at.isEmpty() && guard < 1000; ++guard) {
            const QJsonObject item = DictOf(objects, at);
            EXPECT_EQ(item.value("/Parent").toString(), parent);
            EXPECT_EQ(item.value("/Prev").toString(), before);
            int below = 0;
            CheckLinks(objects, at, below);
            shown += 1 + (item.value("/Count").toInt() > 0 ? below : 0);
            before = at;
            at = item.value("/Next").toString();
        }
        EXPECT_EQ(above.value("/Last").toString(), before);
        EXPECT_EQ(qAbs(above.value("/Count").toInt()), shown);
    }
};

TEST_F(TOutlines, ItemsAreAddedLastAndCounted) {
    Open(3, {.Outlines = true});
    TPDFIndirect* first = Document.FirstOutline();
    EXPECT_EQ(Document.OutlineCount(), 3);
    TPDFIndirect* child = Add(first, "child", 2);
    Add(child, "Enkel \xC3\xA4 \xE6\x97\xA5", 3);
    Add(first, "second", 1);
    Add(nullptr, "last", 2);
    EXPECT_EQ(Document.OutlineCount(), 7);
    EXPECT_TRUE(Document.GetModified());
    EXPECT_EQ(Saved(), QString::fromUtf8("+Outline 1>1(+child>2(Enkel ä 日>3) second>1) Outline 2>2 "
                                         "Outline 3>3 last>2"));
    EXPECT_TRUE(RunProgram("mutool", {"show", Out, "outline"})
                    .Out.contains("\"Enkel \xC3\xA4 \xE6\x97\xA5\"\t#page=3"));
    Add(child, "later", 1); // the document goes on from what was written
    EXPECT_TRUE(Saved().contains(" later>1) second>1)"));
}

TEST_F(TOutlines, ReferencesOutliveSavesAndNothingElse) {
    Open(4, {.Outlines = true});
    TPDFIndirect* third = Document.NextOutline(Document.NextOutline(Document.FirstOutline()));
    const QPointer<TPDFIndirect> gone = Document.NextOutline(Document.FirstOutline());
    TPDFIndirect* child = Add(third, "child", 4);
    Document.DeletePage(1);
    Document.SaveToPath(Out, /*keepSource*/ false, /*takeName*/ true);
    EXPECT_EQ(gone, nullptr) << "its page was deleted, and the item with it";
    EXPECT_EQ(Document.FirstChildOutline(third), child);
    EXPECT_EQ(Document.PrevOutline(third), Document.FirstOutline());
    Add(child, "grandchild", 1);
    Document.SaveToPath(Out, /*keepSource*/ false, /*takeName*/ true);
    EXPECT_EQ(Written(), "Outline 1>1 +Outline 3>2(+child>3(grandchild>1)) Outline 4>3");

    TZQPDFDocument other(nullptr);
    EXPECT_EQ(other.NextOutline(third), nullptr);
    EXPECT_FALSE(other.OwnsReference(third));
    EXPECT_THROW(other.NewOutline(third, "x", 1, TPDFLinkDestKind::ldFit), EPDFError);
    const QPointer<TPDFIndirect> held = third;
    Document.OpenFromFile(In, {});
    EXPECT_EQ(held, nullptr);
    EXPECT_EQ(Document.NextOutline(third), nullptr) << "not looked into";
}

TEST_F(TOutlines, ItemsFollowTheirPages) {
    MakePdf(Files.Path("other.pdf"), 2);
    TZQPDFDocument other(nullptr);
    other.OpenFromFile(Files.Path("other.pdf"), {});
    Add(nullptr, "blank", 1); // a new document, without a file
    Document.ImportPagesFrom(other, "all", -1);
    Add(nullptr, "imported", 3);
    TPDFIndirect* heading = Add(nullptr, "heading", 2);
    Add(heading, "below", 1);
    Add(Add(nullptr, "gone", 2), "gone, too", 2);
    Document.InsertPages(1, 2, 100, 100, /*before*/ true);
    Document.DeletePage(3); // the first imported one
    EXPECT_EQ(Saved(), "blank>3 imported>4 +heading>0(below>3)");
    Document.DeletePage(3); // by now in the file
    EXPECT_EQ(Saved(), "blank>3 +heading>0(below>3)");
    EXPECT_EQ(Document.OutlineCount(), 3);
}

TEST_F(TOutlines, PagesCountFromOneAndMustExist) {
    Open(2);
    for (const int page : {0, 3, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(RaisedBy([&] { Add(nullptr, "x", page); }),
                  QStringLiteral("Page %1 does not exist.").arg(page));
    }
    EXPECT_EQ(Document.OutlineCount(), 0);
    EXPECT_FALSE(Document.GetModified());
    EXPECT_EQ(Saved(), "");
}

TEST_F(TOutlines, DestinationsAreTheTopLeftCornerAsDisplayed) {
    using enum TPDFLinkDestKind;
    struct {
        TPDFLinkDestKind Kind;
        int Rotation;
        const char* Expected;
    } const cases[] = {
        {ldXYZ, 0, R"("/XYZ",10,190.5,null)"},
        {ldXYZ, 90, R"("/XYZ",10,20,null)"},
        {ldXYZ, 180, R"("/XYZ",300,20,null)"},
        {ldXYZ, 270, R"("/XYZ",300,190.5,null)"},
        {ldFit, 0, R"("/Fit")"},
        {ldFitH, 0, R"("/FitH",190.5)"},
        {ldFitV, 90, R"("/FitV",10)"},
        {ldFitR, 180, R"("/FitR",10,20,300,190.5)"},
        {ldFitB, 0, R"("/FitB")"},
        {ldFitBH, 0, R"("/FitBH",190.5)"},
        {ldFitBV, 0, R"("/FitBV",10)"},
    };
    Open(1, {.PageEntries = "/CropBox [10 20 300 190.5]", .MediaBox = "0 0 400 200"});
    for (const auto& c : cases) {
        Document.OpenFromFile(In, {});
        Add(nullptr, "x", 1, c.Kind);
        Document.RotatePages({}, c.Rotation); // behind the item: the page counts as it is saved
        Saved();
        const QJsonArray items = PdfJson(Out).value("outlines").toArray();
        QJsonArray dest = items.at(0)[QStringLiteral("dest")].toArray();
        dest.removeFirst(); // the page
        EXPECT_EQ(QJsonDocument(dest).toJson(QJsonDocument::Compact), '[' + QByteArray(c.Expected) + ']');
    }
}

TEST_F(TOutlines, AClosedItemStaysClosed) {
    const auto item = [](const char* rest) { return QByteArray("<< /Title (x) ") + rest + " >>"; };
    Files.Write("in.pdf", PdfOf({"<< /Type /Catalog /Pages 2 0 R /Outlines 4 0 R >>",
                                 "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                                 "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>",
                                 "<< /First 5 0 R /Last 5 0 R /Count 1 >>",
                                 item("/Parent 4 0 R /First 6 0 R /Last 6 0 R /Count -1 /Dest [3 0 R /Fit]"),
                                 item("/Parent 5 0 R /Dest [3 0 R /Fit]")}));
    Document.OpenFromFile(In, {});
    Add(Document.FirstChildOutline(Document.FirstOutline()), "new", 1);
    EXPECT_EQ(Saved(), "x>1(+x>1(new>1))");
}

TEST_F(TOutlines, DamageEndsWhereItIsMetAndIsMendedWhereItemsAreAdded) {
    const auto document = [](const QByteArray& outlines, const QByteArray& one, const QByteArray& two) {
        return PdfOf({"<< /Type /Catalog /Pages 2 0 R /Outlines " + outlines + " >>",
                      "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                      "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>", "<< /First 5 0 R >>", one, two});
    };
    struct {
        const char* What;
        QByteArray File;
        int Count;
        const char* Expected;
    } const cases[] = {
        {"loop", document("4 0 R", "<< /Title (a) /Next 6 0 R >>", "<< /Title (b) /Next 5 0 R >>"), 2,
         "a>0 b>0 new>1"},
        {"child is its own parent",
         document("4 0 R", "<< /Title (a) /First 6 0 R >>", "<< /Title (b) /First 5 0 R >>"), 2,
         "+a>0(b>0) new>1"},
        {"no item", document("4 0 R", "(text)", "null"), 0, "new>1"},
        {"no outline", document("[1 2]", "null", "null"), 0, "new>1"},
        {"outline and item without objects of their own",
         document("<< /First << /Title (a) /Next 5 0 R >> >>", "<< /Title (b) >>", "null"), 2,
         "a>0 b>0 new>1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.What);
        Files.Write("in.pdf", c.File);
        Document.OpenFromFile(In, {});
        EXPECT_EQ(Document.OutlineCount(), c.Count);
        Add(nullptr, "new", 1);
        EXPECT_EQ(Saved(), c.Expected);
        EXPECT_TRUE(RunProgram("mutool", {"show", Out, "outline"}).Out.contains("\"new\"\t#page=1"));
        TZQPDFDocument reader(nullptr);
        reader.OpenFromFile(Out, {});
        EXPECT_EQ(reader.OutlineCount(), c.Count + 1);
    }
}

TEST_F(TOutlines, DeepAndLongOutlinesTakeNoStack) {
    Open(1);
    TPDFIndirect* item = nullptr;
    for (int i = 0; i < 10'000; ++i)
        item = Add(item, "deep", 1);
    for (int i = 0; i < 10'000; ++i)
        Add(nullptr, "long", 1);
    Document.SaveToPath(Out, /*keepSource*/ false, /*takeName*/ true);
    EXPECT_EQ(Document.OutlineCount(), 20'000);
}

} // namespace
