// Saving: what is kept, what is renewed, where it goes.
#include "engine/DocumentFixture.h"
#include "engine/PdfSamples.h"

#include <sys/stat.h>

namespace {

using TSaveCase = TDocumentTest;

QByteArray WithMetadata(const QByteArray& metadata, const QByteArray& info = "<< /Title (Old) >>") {
    return PdfOf({"<< /Type /Catalog /Pages 2 0 R /Metadata 4 0 R >>",
                  "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                  "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 99 99] >>",
                  StreamOf(metadata, "/Type /Metadata /Subtype /XML"), info},
                 "/Info 5 0 R");
}

TEST_F(TSaveCase, InformationIsWrittenInAnyScriptAndDatesAreRenewed) {
    Open(SamplePdf(1, {.Title = "Old"}));
    EXPECT_EQ(Document.GetInfoString("Title"), "Old");
    Document.SetInfoString("Title", "Überschrift 題名 \U0001F600", false);
    Document.SetInfoString("Author", "A (B) \\ C", false);
    Document.SetInfoString("Title", "ignored", /*keepExisting*/ true);
    EXPECT_TRUE(Document.GetModified());
    Save();
    EXPECT_EQ(PdfInfo(Out, "Title"), "Überschrift 題名 \U0001F600");
    EXPECT_EQ(PdfInfo(Out, "Author"), "A (B) \\ C");
    const QDateTime written = QDateTime::fromString(PdfInfo(Out, "ModDate", {"-isodates"}), Qt::ISODate);
    EXPECT_LT(qAbs(written.secsTo(QDateTime::currentDateTime())), 60);
    EXPECT_TRUE(Document.GetModified()) << "only a save that takes the name clears the state";

    TZQPDFDocument again(nullptr);
    again.OpenFromFile(Out, {});
    again.SetInfoString("Author", {}, false);
    again.SaveToPath(Out, true, false);
    EXPECT_EQ(PdfInfo(Out, "Author"), "");
}

TEST_F(TSaveCase, TheFirstHalfOfTheIdStaysAndTheSecondIsRenewed) {
    const QByteArray id = "<00112233445566778899aabbccddeeff>";
    Open(PdfOf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 99 99] >>"},
               "/ID [" + id + id + "]"));
    Save();
    const QJsonArray written = PdfObjects(Out)["trailer"].toObject()["value"].toObject()["/ID"].toArray();
    EXPECT_EQ(written[0].toString(), "b:00112233445566778899aabbccddeeff");
    EXPECT_NE(written[1].toString(), written[0].toString());
}

/// Names for which the rule gives the same answer again and again.
TEST_F(TSaveCase, AFreeNameReplacesNothingWhateverTheName) {
    for (const char* name : {"a (final).pdf", ".hidden.pdf", "linked.pdf"}) {
        const TWorkspace place;
        if (name == QByteArray("linked.pdf"))
            QFile::link("elsewhere.pdf", place.Path(QLatin1String(name)));
        for (int i = 0; i < 4; ++i) {
            Open(SamplePdf(1 + i));
            Document.SaveToFreeName(place.Path(QLatin1String(name)));
        }
        QStringList pages;
        for (const string& made : place.Names())
            if (place.Has(made))
                pages.append(PdfInfo(place.Path(made), "Pages"));
        pages.sort();
        EXPECT_EQ(pages, QStringList({"1", "2", "3", "4"})) << name;
    }
}

TEST_F(TSaveCase, StreamsAreCopiedAsTheyStand) {
    const QByteArray badlyDeflated = "x\x9C this is no deflated data";
    Open(PdfOf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 99 99] /Contents 4 0 R >>",
                StreamOf(badlyDeflated, "/Filter /FlateDecode")}));
    Save();
    EXPECT_TRUE(Files.Read("out.pdf").contains(badlyDeflated));
}

TEST_F(TSaveCase, XmpIsKeptInStepAndEverythingElseInIt) {
    const QByteArray titleElement =
        "<rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
        "xmlns:pdfaid=\"http://www.aiim.org/pdfa/ns/id/\" pdfaid:part=\"2\"><dc:title><rdf:Alt><rdf:li "
        "xml:lang=\"x-default\">Old</rdf:li></rdf:Alt></dc:title></rdf:Description>";
    const QByteArray attributes =
        "<rdf:Description rdf:about=\"\" xmlns:pdf=\"http://ns.adobe.com/pdf/1.3/\" pdf:Keywords=\"old\" "
        "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" xmp:ModifyDate=\"2001-01-01T00:00:00Z\"/>";
    Open(WithMetadata(XmpPacket(titleElement + attributes)));
    Document.SetInfoString("Title", "New <&> Ω", false);
    Document.SetInfoString("Keywords", "a, b", false);
    Document.SetInfoString("Author", "M\x01o\uFFFF", false); // with what XML can't hold
    Save();
    EXPECT_EQ(QpdfCheck(Out), 0);
    TZQPDFDocument saved(nullptr);
    saved.OpenFromFile(Out, {});
    const NarrowString xmp = saved.GetXMLMetaData();
    const string path = Files.Write("xmp.xml", xmp);
    EXPECT_EQ(RunProgram("xmllint", {"--noout", path}).Exit, 0);
    for (const char* kept :
         {"<?xpacket begin=", "<?xpacket end=\"w\"?>", "pdfaid:part=\"2\"", "New &lt;&amp;&gt; Ω</rdf:li>",
          "<rdf:Seq><rdf:li>Mo</rdf:li></rdf:Seq>", "<pdf:Keywords>a, b</pdf:Keywords>"})
        EXPECT_TRUE(xmp.contains(kept)) << kept << " in " << xmp.toStdString();
    for (const char* gone : {"Old", "old", "2001"})
        EXPECT_FALSE(xmp.contains(gone)) << gone;
    EXPECT_EQ(xmp.count("ModifyDate"), 2); // one element: its opening and closing tag
}

TEST_F(TSaveCase, XmpThatCannotBeReadIsLeftAlone) {
    for (const QByteArray& broken :
         {QByteArray("<x:xmpmeta"), QByteArray("no packet"),
          QByteArray("<!DOCTYPE a [<!ENTITY b \"bbbbbbbbbb\"><!ENTITY c \"&b;&b;&b;\">]><a>&c;</a>")}) {
        Open(WithMetadata(broken));
        Document.SetInfoString("Title", "New", false);
        Save();
        EXPECT_TRUE(Files.Read("out.pdf").contains(broken)) << broken.toStdString();
        EXPECT_TRUE(Document.Warnings().Has(TWarningKind::MetadataUnreadable));
        EXPECT_EQ(PdfInfo(Out, "Title"), "New");
    }
}

TEST_F(TSaveCase, XmpCanBeSetAndRemoved) {
    Open(SamplePdf(1));
    EXPECT_EQ(Document.GetXMLMetaData(), "");
    Document.SetXMLMetaData(XmpPacket("<rdf:Description rdf:about=\"\"/>"));
    Save();
    EXPECT_EQ(PdfInfo(Out, "Metadata Stream"), "yes");
    Document.SetXMLMetaData({});
    Save();
    EXPECT_EQ(PdfInfo(Out, "Metadata Stream"), "no");
}

TEST_F(TSaveCase, ViewSettingsRoundTripThroughTheNamesOfTheStandard) {
    struct {
        TPDFPageMode Mode;
        const char* ModeName;
        TPDFPageLayout Layout;
        const char* LayoutName;
    } const cases[] = {
        {TPDFPageMode::pmUseNone, "/UseNone", TPDFPageLayout::plSinglePage, "/SinglePage"},
        {TPDFPageMode::pmUseOutlines, "/UseOutlines", TPDFPageLayout::plOneColumn, "/OneColumn"},
        {TPDFPageMode::pmUseThumbs, "/UseThumbs", TPDFPageLayout::plTwoColumnLeft, "/TwoColumnLeft"},
        {TPDFPageMode::pmFullScreen, "/FullScreen", TPDFPageLayout::plTwoColumnRight, "/TwoColumnRight"},
        {TPDFPageMode::pmUseOC, "/UseOC", TPDFPageLayout::plTwoPageLeft, "/TwoPageLeft"},
        {TPDFPageMode::pmUseAttachments, "/UseAttachments", TPDFPageLayout::plTwoPageRight, "/TwoPageRight"},
    };
    Open(SamplePdf(1));
    EXPECT_EQ(Document.GetPageMode(), TPDFPageMode::pmUseNone);
    for (const auto& c : cases) {
        Document.SetPageMode(c.Mode);
        Document.SetPageLayout(c.Layout);
        Save();
        const QJsonObject catalog = Catalog(Out);
        EXPECT_EQ(catalog["/PageMode"].toString(), QLatin1String(c.ModeName));
        EXPECT_EQ(catalog["/PageLayout"].toString(), QLatin1String(c.LayoutName));
        TZQPDFDocument saved(nullptr);
        saved.OpenFromFile(Out, {});
        EXPECT_EQ(saved.GetPageMode(), c.Mode);
        EXPECT_EQ(saved.GetPageLayout(), c.Layout);
    }
}

TEST_F(TSaveCase, TheTargetMayBeItsOwnSourceAndTheDocumentStaysUsable) {
    for (const bool keepSource : {true, false}) {
        Open(SamplePdf(3));
        TZQPDFPage& second = Document.Pages().getItem(1);
        for (int i = 0; i < 3; ++i) {
            Document.RotatePages("2", 90);
            Document.SaveToPath(In, keepSource, /*takeName*/ true);
            EXPECT_FALSE(Document.GetModified());
            EXPECT_EQ(&Document.Pages().getItem(1), &second) << "pages keep their identity";
        }
        Document.DeletePage(0);
        Document.SaveToPath(Out, keepSource, false);
        EXPECT_EQ(PageTexts(In), (QStringList{"Page 1", "Page 2", "Page 3"}));
        EXPECT_EQ(PageDicts(In)[1]["/Rotate"].toInt(), 270);
        EXPECT_EQ(PageTexts(Out), (QStringList{"Page 2", "Page 3"}));
        EXPECT_EQ(Document.FileName(), In);
        EXPECT_EQ(Files.Names(), (QStringList{"in.pdf", "out.pdf"})) << "no temporary is left";
    }
}

TEST_F(TSaveCase, TheBooleansOfTheSavePair) {
    Open(SamplePdf(1));
    Document.SetModified(true);
    Document.SaveCopyToFile(Out, /*keepSource*/ true, /*takeName*/ false);
    EXPECT_EQ(Document.FileName(), In);
    EXPECT_TRUE(Document.GetModified());
    Document.SaveCopyToFile(Out, /*keepSource*/ false, /*takeName*/ true);
    EXPECT_EQ(Document.FileName(), Out);
    EXPECT_FALSE(Document.GetModified());
    // Bound to the written file, the document needs the one it was opened from no more.
    QFile::remove(In);
    Document.SaveToPath(In, true, false);
    EXPECT_EQ(PageTexts(In), QStringList{"Page 1"});
}

TEST_F(TSaveCase, PublishingReplacesAndTakesTheModeOfTheSource) {
    Open(SamplePdf(1));
    Files.Write("out.pdf", "old");
    ::chmod(In.toUtf8().constData(), 0640);
    Save();
    struct stat info {};
    ASSERT_EQ(::stat(Out.toUtf8().constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640U);
    EXPECT_EQ(QpdfCheck(Out), 0);
    EXPECT_THROW(Document.SaveToPath(Files.Path("missing/out.pdf"), true, false), EFileError);
    EXPECT_EQ(Files.Names(), (QStringList{"in.pdf", "out.pdf"}));
    Save(); // usable after a failure
}

TEST_F(TSaveCase, ASourceThatWasCutShortMeanwhileIsNeverPublishedAsDamage) {
    QByteArray pdf = PdfOf({"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                            "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 99 99] /Contents 4 0 R >>",
                            StreamOf(QByteArray(3 << 20, ' '))});
    Open(pdf);
    QFile::resize(In, 2 << 20);
    EXPECT_ANY_THROW(Save());
    EXPECT_FALSE(Files.Has("out.pdf"));
}

TEST_F(TSaveCase, ANewDocumentIsAFileLikeAnyOther) {
    Document.SetInfoString("Title", "Blank", false);
    Document.InsertPages(1, 1, 200, 100, false);
    Save();
    EXPECT_EQ(QpdfCheck(Out), 0);
    EXPECT_EQ(PdfInfo(Out, "Pages"), "2");
    EXPECT_EQ(PdfInfo(Out, "Page size"), "595.276 x 841.89 pts (A4)");
    EXPECT_EQ(PdfInfo(Out, "Title"), "Blank");
}

TEST_F(TSaveCase, LockedChangesAreSavedButNotReported) {
    Open(SamplePdf(1));
    Document.LockChanges();
    Document.RotatePages({}, 90);
    EXPECT_FALSE(Document.GetModified());
    Document.SetModified(true);
    EXPECT_TRUE(Document.GetModified());
    Save(); // left locked by a rendering that failed
    EXPECT_EQ(PageDicts(Out)[0]["/Rotate"].toInt(), 90);
}

} // namespace
