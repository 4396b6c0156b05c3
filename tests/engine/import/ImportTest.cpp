// Importing and extracting pages.
#include "engine/DocumentFixture.h"

#include <sys/resource.h>

namespace {

struct TImport : TDocumentTest {
    const string Other = Files.Path("other.pdf");

    void SetUp() override {
        MakePdf(In, 2);
        Document.OpenFromFile(In, {});
    }
    void WriteOther(const QByteArray& contents) { Files.Write("other.pdf", contents); }
    /// Pages of the sample with another text, so that their origin shows.
    void WriteOther(int pages, const TSampleOptions& options = {}) {
        WriteOther(SamplePdf(pages, options).replace("(Page ", "(Leaf "));
    }
    int Import(const char* range, int index = -1) {
        TZQPDFDocument source(nullptr);
        source.OpenFromFile(Other, {});
        return Document.ImportPagesFrom(source, range, index);
    }
    void Save(TZQPDFDocument& document) {
        document.SaveToPath(Out, /*keepSource*/ true, /*takeName*/ false);
        EXPECT_EQ(QpdfCheck(Out), 0);
    }
    QString SavedTexts() {
        Save(Document);
        return PageTexts(Out).join(u'|').remove("age ").replace("Leaf ", "L");
    }
    /// A page range of `Other` as a document of its own, as extraction makes it.
    void Extract(const char* range) {
        TZQPDFDocument source(nullptr);
        source.OpenFromFile(Other, {});
        TZQPDFDocument extract(nullptr);
        extract.ImportPagesFrom(source, range, -1);
        extract.DeletePage(0);
        Save(extract);
    }
};

TEST_F(TImport, PagesGoBeforeTheNumberNamed) {
    struct {
        const char* Range;
        int Index;
        const char* Texts;
    } const cases[] = {
        {"", -1, "P1|P2|L1|L2|L3"}, {"2", 1, "L2|P1|P2"},      {"3-2", 2, "P1|L3|L2|P2"},
        {"1", 3, "P1|P2|L1"},       {"1", 99, "P1|P2|L1"},     {"1", 0, "L1|P1|P2"},
        {"1", -7, "L1|P1|P2"},      {"2,2", 2, "P1|L2|L2|P2"}, {"9", 1, "P1|P2"},
    };
    WriteOther(3);
    for (const auto& c : cases) {
        Document.OpenFromFile(In, {});
        EXPECT_EQ(Import(c.Range, c.Index), QString::fromLatin1(c.Texts).count(u'L'));
        EXPECT_EQ(SavedTexts(), QLatin1String(c.Texts)) << c.Range << " at " << c.Index;
    }
}

TEST_F(TImport, FromAFileTheIndexIsTakenAsItIs) {
    MakePdf(Other, 1, {.UserPassword = "geheim", .OwnerPassword = "x"});
    EXPECT_THROW(Document.ImportPagesFromDocument(Other, {}, {}, 1, false), EPDFError);
    EXPECT_TRUE(Document.ImportPagesFromDocument(Other, "geheim", {}, 2, /*after*/ true));
    EXPECT_FALSE(Document.ImportPagesFromDocument(Other, "geheim", "5", 2, true));
    EXPECT_EQ(SavedTexts(), "P1|P1|P2");
    EXPECT_EQ(PdfInfo(Out, "Encrypted"), "no");
}

TEST_F(TImport, TheSourceMayGoChangeOrBeTheDocumentItself) {
    WriteOther(2, {.PageEntries = "/Rotate 90"});
    auto source = std::make_unique<TZQPDFDocument>(nullptr);
    source->OpenFromFile(Other, {});
    source->RotatePages("1", 90);
    source->InsertPages(1, 1, 10, 10, /*before*/ true);
    EXPECT_EQ(Document.ImportPagesFrom(*source, "1-2", 1), 2);
    source->RotatePages("2", 90); // too late for the copy
    source->DeletePage(2);
    source->SaveToPath(Files.Path("source.pdf"), true, false);
    source.reset();
    QFile::remove(Other);
    Document.RotatePages("3", 270);
    EXPECT_EQ(Document.ImportPagesFrom(Document, "2-3", -1), 2);
    EXPECT_EQ(SavedTexts(), "|L1|P1|P2|L1|P1");
    const auto pages = PageDicts(Out);
    EXPECT_EQ(pages[1]["/Rotate"].toInt(), 180);
    EXPECT_EQ(pages[4]["/Rotate"].toInt(), 180);
    EXPECT_EQ(pages[5]["/Rotate"].toInt(), 270);
    EXPECT_EQ(PageTexts(Files.Path("source.pdf")), (QStringList{"", "Leaf 1"}));
    Document.DeletePageRange("1-3");
    EXPECT_EQ(SavedTexts(), "P2|L1|P1");
}

TEST_F(TImport, LinksLeadToTheCopiesOfPagesImportedTogether) {
    WriteOther(
        PdfOf({"<< /Type /Catalog /Pages 2 0 R /Names << /Dests << /Names [(name) [5 0 R /Fit]] >> >> >>",
               "<< /Type /Pages /Count 3 /Kids [3 0 R 4 0 R 5 0 R] /MediaBox [0 0 99 99] >>",
               "<< /Type /Page /Parent 2 0 R /Annots [6 0 R 7 0 R 8 0 R] >>",
               "<< /Type /Page /Parent 2 0 R >>", "<< /Type /Page /Parent 2 0 R /Contents 10 0 R >>",
               "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Dest [4 0 R /Fit] /P 3 0 R >>",
               "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A << /S /GoTo /D (name) >> >>",
               "<< /Type /Annot /Subtype /Text /Rect [0 0 9 9] /Popup 9 0 R /Contents (note) >>",
               "<< /Type /Annot /Subtype /Popup /Rect [0 0 9 9] /Parent 8 0 R >>", StreamOf("0 0 m")}));
    EXPECT_EQ(Import("1,3,1"), 3);
    Save(Document);
    EXPECT_EQ(CountOfType(Out, "/Page"), 5) << "page 2 of the source stayed where it was";
    const QJsonObject objects = PdfObjects(Out);
    const QJsonArray pages = PdfJson(Out)["pages"].toArray();
    const auto page = [&](int i) { return pages[i].toObject()["object"].toString(); };
    const QList<QJsonObject> dicts = PageDicts(Out);
    const auto annotation = [&](int i, int n) { return DictOf(objects, dicts[i]["/Annots"].toArray()[n]); };
    for (const int copy : {2, 4}) {
        EXPECT_EQ(annotation(copy, 0)["/P"].toString(), page(copy));
        EXPECT_TRUE(annotation(copy, 0)["/Dest"].toArray()[0].isNull()) << "its page was not imported";
        EXPECT_EQ(annotation(copy, 1)["/A"].toObject()["/D"].toArray()[0].toString(), page(3));
        EXPECT_EQ(annotation(copy, 2)["/Contents"].toString(), "u:note");
    }
    EXPECT_NE(dicts[2]["/Annots"].toArray()[2].toString(), dicts[4]["/Annots"].toArray()[2].toString())
        << "each copy has annotations of its own";
    EXPECT_EQ(CountOfType(Out, "/Annot"), 8);
}

TEST_F(TImport, FormFieldsComeAlongRenamedAndWithoutPagesLeftBehind) {
    const QByteArray form = PdfOf(
        {"<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [5 0 R 8 0 R] /DA (/Helv 0 Tf) /DR << /Font << "
         "/Helv 9 0 R >> >> >> >>",
         "<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /MediaBox [0 0 99 99] >>",
         "<< /Type /Page /Parent 2 0 R /Annots [6 0 R] >>",
         "<< /Type /Page /Parent 2 0 R /Annots [7 0 R 8 0 R] >>",
         "<< /FT /Tx /T (both) /V (value) /Kids [6 0 R 7 0 R] >>",
         "<< /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /Parent 5 0 R /P 3 0 R >>",
         "<< /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /Parent 5 0 R /P 4 0 R >>",
         "<< /FT /Tx /T (second) /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /P 4 0 R >>",
         "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"});
    WriteOther(form);
    Files.Write("in.pdf", form);
    Document.OpenFromFile(In, {});
    EXPECT_EQ(Import("1"), 1);
    EXPECT_EQ(Import("1-2"), 2);
    Save(Document);
    const QJsonObject acroform = PdfJson(Out)["acroform"].toObject();
    QStringList names;
    for (const QJsonValue& field : acroform["fields"].toArray()) {
        EXPECT_TRUE(field.toObject()["pageposfrom1"].isDouble()) << "every widget lies on a page";
        names.append(field.toObject()["fullname"].toString());
    }
    names.sort();
    EXPECT_EQ(names.join(u' '), "both both both+1 both+2 both+2 second second+1");
    EXPECT_TRUE(Document.Warnings().IsEmpty());
}

/// One page with one field, whose form has these resources; object 6 is a stream, 7 a font.
QByteArray FormWith(const QByteArray& resources, const QByteArray& fieldEntries = {}) {
    return PdfOf(
        {"<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [4 0 R] /DA (/Helv 9 Tf) /DR " + resources +
             " >> >>",
         "<< /Type /Pages /Count 1 /Kids [3 0 R] /MediaBox [0 0 99 99] >>",
         "<< /Type /Page /Parent 2 0 R /Annots [4 0 R] >>",
         "<< /FT /Tx /T (name) /V (value) /Type /Annot /Subtype /Widget /Rect [0 0 9 9] /AP << /N 5 0 R >> "
         "/P 3 0 R " +
             fieldEntries + ">>",
         StreamOf("/Tx BMC EMC", "/Subtype /Form /BBox [0 0 9 9]"),
         StreamOf("stream", "/Subtype /Form /BBox [0 0 9 9]"),
         "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"});
}

TEST_F(TImport, FieldsSurviveOddResourcesOfTheirForm) {
    const QByteArray good = "<< /Font << /Helv 7 0 R >> >>";
    for (const QByteArray& resources :
         {good, QByteArray("6 0 R"), QByteArray("<< /Font << /Helv 7 0 R >> /XObject 6 0 R >>"),
          QByteArray("<< /Font 6 0 R >>"), QByteArray("<< /Font << /Helv 6 0 R >> /ProcSet [/PDF] >>"),
          QByteArray("[6 0 R]"), QByteArray("<< /Font << /Helv 7 0 R >> /XObject << /Fm 6 0 R >> >>")})
        for (const QByteArray& own : {good, resources}) {
            SCOPED_TRACE((resources + " into " + own).toStdString());
            WriteOther(FormWith(resources));
            Open(FormWith(own));
            EXPECT_EQ(Import("1"), 1);
            Save(Document);
            EXPECT_EQ(PdfJson(Out)["acroform"].toObject()["fields"].toArray().size(), 2);
            EXPECT_TRUE(Document.Warnings().IsEmpty());
        }
}

TEST_F(TImport, ExtractionLeavesUnusedResourcesBehind) {
    const QByteArray noise(200'000, 'x');
    WriteOther(PdfOf(
        {"<< /Type /Catalog /Pages 2 0 R >>",
         "<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /MediaBox [0 0 99 99] /Resources 5 0 R >>",
         "<< /Type /Page /Parent 2 0 R /Contents 8 0 R >>", "<< /Type /Page /Parent 2 0 R /Contents 9 0 R >>",
         "<< /XObject << /A 6 0 R /B 7 0 R >> >>", StreamOf("A" + noise, "/Subtype /Form /BBox [0 0 9 9]"),
         StreamOf("B" + noise, "/Subtype /Form /BBox [0 0 9 9]"), StreamOf("/A Do"), StreamOf("/B Do")}));
    Extract("2");
    const QByteArray written = Files.Read("out.pdf");
    EXPECT_TRUE(written.contains("Bxxx"));
    EXPECT_FALSE(written.contains("Axxx"));
    Extract("1-2");
    EXPECT_TRUE(Files.Read("out.pdf").contains("Axxx"));
}

TEST_F(TImport, LayersThatWereHiddenStayHidden) {
    WriteOther(PdfOf({"<< /Type /Catalog /Pages 2 0 R /OCProperties << /OCGs [4 0 R 5 0 R 6 0 R] /D << /OFF "
                      "[4 0 R] >> >> >>",
                      "<< /Type /Pages /Count 1 /Kids [3 0 R] /MediaBox [0 0 99 99] >>",
                      "<< /Type /Page /Parent 2 0 R /Resources << /Properties << /A 4 0 R /B 5 0 R >> >> >>",
                      "<< /Type /OCG /Name (hidden) >>", "<< /Type /OCG /Name (shown) >>",
                      "<< /Type /OCG /Name (unused) >>"}));
    Extract("1");
    EXPECT_EQ(CountOfType(Out, "/OCG"), 2);
    const QJsonObject objects = PdfObjects(Out);
    for (const QJsonValue& object : objects) {
        const QJsonObject properties = object.toObject()["value"].toObject()["/OCProperties"].toObject();
        if (properties.isEmpty())
            continue;
        const QJsonValue off = properties["/D"].toObject()["/OFF"].toArray().at(0);
        EXPECT_EQ(DictOf(objects, off)["/Name"].toString(), "u:hidden");
        EXPECT_EQ(properties["/OCGs"].toArray().size(), 2);
        return;
    }
    ADD_FAILURE() << "no optional content";
}

TEST_F(TImport, LongChainsOfObjectsNeedNoStack) {
    constexpr int Length = 20'000;
    QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Count 1 /Kids [3 0 R] /MediaBox [0 0 99 99] >>",
        "<< /Type /Page /Parent 2 0 R /Chain 5 0 R /Annots [4 0 R] >>",
        "<< /Type /Annot /Subtype /Widget /FT /Tx /T (x) /Rect [0 0 9 9] /Chain 5 0 R >>"};
    for (int i = 0; i < Length; ++i)
        objects << "<< /Next " + QByteArray::number(i + 6) + " 0 R >>";
    objects << "(the end)";
    WriteOther(PdfOf(objects));
    EXPECT_EQ(Import("1"), 1);
    Save(Document);
    EXPECT_TRUE(Files.Read("out.pdf").contains("(the end)"));
    // The library's way with fields does, so they stay behind, and that is told.
    EXPECT_FALSE(PageDicts(Out)[2].contains("/Annots"));
    EXPECT_TRUE(Document.Warnings().Has(TWarningKind::FieldsLost));
}

TEST_F(TImport, ManyFilesNeedFewDescriptorsAndMayGoBeforeTheSave) {
    constexpr int Imports = 150;
    constexpr rlim_t Most = 100;
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit few = before;
    few.rlim_cur = Most;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    for (int i = 0; i < Imports; ++i) {
        const string path = Files.Path(QStringLiteral("%1.pdf").arg(i));
        MakePdf(path, 1);
        EXPECT_TRUE(Document.ImportPagesFromDocument(path, {}, {}, -1, false));
        QFile::remove(path);
    }
    Document.SaveToPath(Out, /*keepSource*/ true, /*takeName*/ false);
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(QpdfCheck(Out), 0);
    EXPECT_EQ(PageTexts(Out).count("Page 1"), Imports + 1);
}

TEST_F(TImport, AnUnreadableSourceLeavesTheDocumentAlone) {
    EXPECT_THROW(Document.ImportPagesFromDocument(Files.Path("missing.pdf"), {}, {}, 1, false), EFileError);
    WriteOther(2);
    EXPECT_THROW(Import("x"), EPDFError);
    EXPECT_EQ(Document.GetPageCount(), 2);
    EXPECT_FALSE(Document.GetModified());
}

} // namespace
