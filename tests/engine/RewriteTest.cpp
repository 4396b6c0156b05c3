// What a file that is written anew gains, keeps and loses.
#include "engine/DocumentFixture.h"
#include "engine/PdfSamples.h"
#include "engine/annotations/StampAnnotation.h"
#include "engine/layers/LayerText.h"

namespace {

struct TRewrite : TDocumentTest {
    void AddText() { (new TZQPDFText(&Document.Pages().getItem(0).Layers()))->SetText(QStringLiteral("x")); }
    [[nodiscard]] QByteArray Header() const { return Files.Read(QStringLiteral("out.pdf")).left(8); }
    [[nodiscard]] qsizetype WarningsWith(const char* word) const {
        return Document.Warnings().filter(QLatin1String(word)).size();
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
    new TZQPDFStampAnnotation(Document, &Document.Pages().getItem(0).Layers(), 9, 9, 0, 0, 0,
                              QStringLiteral("Stamp"), {}, 16);
    Save();
    EXPECT_EQ(Header(), "%PDF-1.3");
    Open(old);
    Document.SetPageMode(TPDFPageMode::pmUseAttachments);
    Save();
    EXPECT_EQ(Header(), "%PDF-1.6");
    Open(old);
    MakePdf(Files.Path(QStringLiteral("other.pdf")), 1); // 1.5, and so may be what its page uses
    Document.ImportPagesFromDocument(Files.Path(QStringLiteral("other.pdf")), {}, {}, 1, false);
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

TEST_F(TRewrite, NestedMetadataStaysAsItIs) {
    const QByteArray packed = "x\x9C\x03\x00\x00\x00\x00\x01"; // nothing, deflated
    const QByteArray metadata = StreamOf(packed, "/Type /Metadata /Subtype /XML /Filter /FlateDecode");
    Open(PdfWithCatalog("/Metadata 4 0 R", {metadata, metadata})
             .replace("/MediaBox", "/Metadata 5 0 R /MediaBox"));
    Save();
    EXPECT_EQ(Files.Read(QStringLiteral("out.pdf")).count(packed), 1) << "the document's own is plain";
    const QJsonObject objects = PdfObjects(Out);
    const QString own = "obj:" + PageDicts(Out)[0]["/Metadata"].toString();
    EXPECT_EQ(objects[own].toObject()["stream"].toObject()["dict"].toObject()["/Filter"], "/FlateDecode");
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
        Document.SetInfoString("Title", QStringLiteral("Täglich"), false);
        Document.SetInfoString("Author", QStringLiteral("Me"), false);
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

} // namespace
