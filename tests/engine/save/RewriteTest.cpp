// What a file that is written anew gains, keeps and loses.
#include "engine/DocumentFixture.h"
#include "engine/PdfSamples.h"
#include "engine/annotations/StampAnnotation.h"
#include "engine/layers/LayerText.h"

namespace {

struct TRewrite : TDocumentTest {
    void AddText(const string& text = "x", const NarrowString& font = "Arial", float y = 50) {
        auto* line = new TZQPDFText(&Document.Pages().getItem(0).Layers());
        line->SetText(text);
        line->SetFontName(font);
        line->MoveTo(20, y);
    }
    /// How many fonts the file has after another text in another run.
    int FontsAfter(const string& text, const NarrowString& font, float y) {
        Document.OpenFromFile(Out, {});
        AddText(text, font, y);
        Save();
        EXPECT_EQ(QpdfCheck(Out), 0);
        return CountOfType(Out, "/FontDescriptor");
    }
    [[nodiscard]] QByteArray Header() const { return Files.Read("out.pdf").left(8); }
    [[nodiscard]] qsizetype WarningsWith(const char* word) const {
        const TPDFWarnings all = Document.Warnings();
        return std::count_if(all.begin(), all.end(), [word](const TPDFWarning& warning) {
            return warning.Text.contains(QLatin1String(word));
        });
    }
};

TEST_F(TRewrite, TheHeaderRisesAsFarAsWhatWasAddedNeeds) {
    const QByteArray old = PdfWithCatalog({}, {}, "1.1");
    Open(old);
    Document.RotatePages({}, 90);
    Save();
    EXPECT_EQ(Header(), "%PDF-1.1");
    AddText();
    Save();
    EXPECT_EQ(Header(), "%PDF-1.2");
    Open(old);
    new TZQPDFStampAnnotation(Document, &Document.Pages().getItem(0).Layers(), 9, 9, 0, 0, 0, "Stamp", {},
                              16);
    Save();
    EXPECT_EQ(Header(), "%PDF-1.3");
    Open(old);
    Document.SetPageMode(TPDFPageMode::pmUseAttachments);
    Save();
    EXPECT_EQ(Header(), "%PDF-1.6");
    Open(old);
    MakePdf(Files.Path("other.pdf"), 1); // 1.5, and so may be what its page uses
    Document.ImportPagesFromDocument(Files.Path("other.pdf"), {}, {}, 1, false);
    Save();
    EXPECT_EQ(Header(), "%PDF-1.5");
}

TEST_F(TRewrite, ACatalogInTheTrailerBecomesAnObject) {
    Open(PdfOf({"null", "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 99 99] >>"})
             .replace("/Root 1 0 R", "/Root << /Type /Catalog /Pages 2 0 R >>"));
    AddText();
    Save();
    EXPECT_EQ(QpdfCheck(Out), 0);
    EXPECT_TRUE(PdfObjects(Out)["trailer"].toObject()["value"].toObject()["/Root"].isString());
    EXPECT_EQ(PageTexts(Out), QStringList{"x"});
}

TEST_F(TRewrite, UsageRightsGoAndOtherPermissionsStay) {
    const QByteArray signature =
        "<< /Type /Sig /Filter /Adobe.PPKLite /ByteRange [0 1 2 3] /Contents <00> >>";
    Open(PdfWithCatalog("/Perms << /UR3 4 0 R >>", {signature}));
    Save();
    EXPECT_FALSE(Catalog(Out).contains("/Perms"));
    EXPECT_EQ(WarningsWith("usage rights"), 1);
    Open(PdfWithCatalog("/Perms << /UR 4 0 R /DocMDP 4 0 R >>", {signature}));
    Save();
    EXPECT_EQ(Catalog(Out)["/Perms"].toObject().keys(), QStringList{"/DocMDP"});
}

TEST_F(TRewrite, SignedFilesAreTold) {
    const QByteArray form = "/AcroForm << /Fields [4 0 R] >>";
    const QByteArray field = "<< /FT /Sig /T (s) /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 3 0 R";
    const QByteArray page = "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 200]";
    const auto sample = [&](const QByteArray& value) {
        return PdfWithCatalog(form, {field + value + " >>"}).replace(page, page + " /Annots [4 0 R]");
    };
    Open(sample({}));
    Save();
    EXPECT_EQ(WarningsWith("signed"), 0) << "a field without a signature";
    Open(sample(" /V << /Type /Sig /Contents <00> >>"));
    EXPECT_EQ(WarningsWith("signed"), 0) << "nothing was done yet";
    Save();
    Save();
    EXPECT_EQ(WarningsWith("signed"), 1) << "whatever was changed, the bytes aren't those that were signed";
    Document.InsertPages(1, 1, 100, 100, /*before*/ false);
    Document.DeletePage(0);
    Save();
    EXPECT_EQ(Document.GetSignaturesCount(), 0);
    EXPECT_EQ(WarningsWith("signed"), 1) << "the page with the signature's field has gone";
}

TEST_F(TRewrite, PagesThatXfaViewersDoNotShowAreTold) {
    const QByteArray required = "<config><dynamicRender>\n required </dynamicRender></config>";
    const QByteArray packed = qCompress(required).mid(4);
    struct {
        QByteArray Catalog;
        QByteArray Packet;
        bool Dynamic;
    } const cases[] = {
        {"/NeedsRendering true /AcroForm << /XFA 4 0 R >>", StreamOf("<template/>"), true},
        {"/NeedsRendering true", "null", false},
        {"/AcroForm << /XFA [(config) 4 0 R] >>", StreamOf(required), true},
        {"/AcroForm << /XFA [(config) 4 0 R] >>", StreamOf(packed, "/Filter /FlateDecode"), true},
        {"/AcroForm << /XFA [(config) 4 0 R] >>", StreamOf("damaged", "/Filter /FlateDecode"), false},
        {"/AcroForm << /XFA [(template) 4 0 R] >>", StreamOf(required), false},
        {"/AcroForm << /XFA 4 0 R >>", StreamOf("<dynamicRender>forbidden</dynamicRender>"), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE((c.Catalog + c.Packet).toStdString());
        Open(PdfWithCatalog(c.Catalog, {c.Packet}));
        Document.SetInfoString("Title", "new", false);
        Save();
        EXPECT_EQ(WarningsWith("XFA"), 0) << "no page was changed";
        AddText();
        Save();
        Save();
        EXPECT_EQ(WarningsWith("XFA"), c.Dynamic ? 1 : 0);
        Open(PdfWithCatalog(c.Catalog, {c.Packet}));
        Document.RotatePages({}, 90);
        Save();
        EXPECT_EQ(WarningsWith("XFA"), c.Dynamic ? 1 : 0);
    }
}

TEST_F(TRewrite, NestedMetadataStaysAsItIs) {
    const QByteArray packed = qCompress(QByteArray("<nested/>")).mid(4);
    const QByteArray metadata = StreamOf(packed, "/Type /Metadata /Subtype /XML /Filter /FlateDecode");
    Open(PdfWithCatalog("/Metadata 4 0 R", {metadata, metadata})
             .replace("/MediaBox", "/Metadata 5 0 R /MediaBox"));
    Save();
    EXPECT_EQ(Files.Read("out.pdf").count(packed), 1) << "the document's own is plain";
    const QJsonObject objects = PdfObjects(Out);
    EXPECT_EQ(DictOf(objects, PageDicts(Out)[0]["/Metadata"])["/Filter"], "/FlateDecode");
}

TEST_F(TRewrite, NewFormatsTellAboutThemselvesByThePacketAlone) {
    const struct {
        QByteArray Catalog;
        QList<QByteArray> Objects;
        QByteArray Version;
        bool HasInfo;
    } cases[] = {{{}, {}, "2.0", false},
                 {"/Version /2.0", {}, "1.7", false},
                 {"/Metadata 4 0 R", {PdfAMetadata(4)}, "2.0", false},
                 {"/Metadata 4 0 R", {StreamOf("no packet", "/Type /Metadata")}, "2.0", true},
                 {"/Metadata 4 0 R", {PdfAMetadata(2)}, "1.7", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE((c.Catalog + c.Version).toStdString());
        Open(PdfWithCatalog(c.Catalog, c.Objects, c.Version));
        Document.SetInfoString("Title", "Täglich", false);
        Document.SetInfoString("Author", "Me", false);
        Save();
        const QJsonObject trailer = PdfObjects(Out)["trailer"].toObject()["value"].toObject();
        EXPECT_EQ(trailer.contains("/Info"), c.HasInfo);
        TZQPDFDocument saved(nullptr);
        saved.OpenFromFile(Out, {});
        EXPECT_EQ(saved.GetInfoString("Title"), "Täglich");
        EXPECT_EQ(saved.GetInfoString("Author"), "Me");
        EXPECT_EQ(saved.GetInfoString("Subject"), "");
    }
    Open(PdfWithCatalog({}, {}, "2.0"));
    Save();
    EXPECT_EQ(Document.GetXMLMetaData(), "") << "nothing to tell";
    Open(PdfWithCatalog(
        "/Metadata 4 0 R",
        {StreamOf(XmpPacket("<rdf:Description xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
                            "xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\" pdf:Keywords=\"k\">"
                            "<dc:title><rdf:Alt><rdf:li xml:lang=\"de\">Titel</rdf:li>"
                            "<rdf:li xml:lang=\"x-default\">Title</rdf:li></rdf:Alt></dc:title>"
                            "<dc:creator><rdf:Seq><rdf:li>A</rdf:li><rdf:li>B</rdf:li>"
                            "</rdf:Seq></dc:creator></rdf:Description>"))}));
    EXPECT_EQ(Document.GetInfoString("Title"), "Title");
    EXPECT_EQ(Document.GetInfoString("Author"), "A; B");
    EXPECT_EQ(Document.GetInfoString("Keywords"), "k");
}

TEST_F(TRewrite, ALaterRunUsesAndGrowsTheFontsOfAnEarlierOne) {
    const struct {
        const char* Font;
        const char* First;
        const char* Within;
        const char* Beyond;
    } cases[] = {{"Arial", "Hello fi", "hell", "Wörld"},
                 {"Cantarell", "Hello", "eell", "Wörld"}, // CFF
                 {"Droid Sans Fallback", "日本語", "本", "中国"},
                 {"DejaVu Sans", "سلام", "سلام", "عالم"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Font);
        Open(SamplePdf(1));
        AddText(QString::fromUtf8(c.First), c.Font);
        Save();
        const int fonts = CountOfType(Out, "/FontDescriptor");
        const auto sizeBefore = QFileInfo(Out).size();
        EXPECT_EQ(FontsAfter(QString::fromUtf8(c.Within), c.Font, 150), fonts);
        EXPECT_LT(QFileInfo(Out).size(), sizeBefore + 1500);
        EXPECT_EQ(FontsAfter(QString::fromUtf8(c.Beyond), c.Font, 200), fonts);
        const string texts = PageTexts(Out).join(u' ').normalized(QString::NormalizationForm_KC);
        for (const char* text : {c.First, c.Within, c.Beyond})
            EXPECT_TRUE(texts.contains(QString::fromUtf8(text))) << text << " in " << texts.toStdString();
    }
}

TEST_F(TRewrite, AFontThatIsNotOursToTheLastByteIsLeftAlone) {
    Open(SamplePdf(1));
    AddText("Hello");
    Save();
    const QByteArray good = Files.Read("out.pdf");
    for (const auto& [ours, other] : {std::pair<QByteArray, QByteArray>("/W [", "/X ["),
                                      {"/Identity-H", "/Identity-V"},
                                      {"/FontFile2", "/FontFile3"},
                                      {"/ItalicAngle 0", "/ItalicAngle 9"},
                                      {"+LiberationSans", "+LiberationSanz"}}) {
        SCOPED_TRACE(other.toStdString());
        ASSERT_TRUE(good.contains(ours));
        Files.Write("out.pdf", QByteArray(good).replace(ours, other));
        EXPECT_EQ(FontsAfter("Hell", "Arial", 150), 2);
    }
    // What another program has packed anew may hold the same, but isn't looked into.
    Files.Write("out.pdf", good);
    RunProgram("qpdf", {"--recompress-flate", "--compression-level=1", Out, "--replace-input"});
    EXPECT_EQ(FontsAfter("Hell", "Arial", 150), 2);
}

TEST_F(TRewrite, SubsetsInPdfA1SayWhatTheyHold) {
    for (const int part : {1, 2}) {
        Open(PdfWithCatalog("/Metadata 4 0 R", {PdfAMetadata(part)}, "1.4"));
        AddText("é"); // made of two others
        Save();
        const QJsonObject objects = PdfObjects(Out);
        QString set;
        for (const QJsonValue& object : objects)
            if (const QJsonObject dict = object.toObject()["value"].toObject(); dict.contains("/CIDSet"))
                set = dict["/CIDSet"].toString();
        EXPECT_EQ(!set.isEmpty(), part == 1);
        if (part == 1) {
            const QByteArray bits = RunProgram("qpdf", {"--filtered-stream-data",
                                                        "--show-object=" + set.section(u' ', 0, 0), Out})
                                        .Out;
            int glyphs = 0;
            for (const char byte : bits)
                glyphs += qPopulationCount(quint8(byte));
            EXPECT_EQ(glyphs, 4) << "none, the letter, the accent and both";
            EXPECT_TRUE(quint8(bits[0]) & 0x80);
        }
    }
}

} // namespace
