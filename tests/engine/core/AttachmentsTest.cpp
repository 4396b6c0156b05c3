// Attached files: read however damaged their tree is, replaced where they stand.
#include "engine/DocumentFixture.h"
#include "engine/PdfSamples.h"
#include "engine/core/EmbeddedFiles.h"

namespace {

struct TAttachments : TDocumentTest {
    const string Note = Files.Write("note.txt", "new");

    void Attach() {
        TPDFEmbeddedFiles& attached = Document.GetEmbeddedFiles();
        attached.Delete(Note); // as scripts replace
        attached.Add(Note, {}, {}, {});
        attached.Update();
        Save();
        EXPECT_EQ(QpdfCheck(Out), 0);
    }
    [[nodiscard]] QByteArray Attached(const string& name) const {
        return RunProgram("qpdf", {QStringLiteral("--show-attachment=") + name, Out}).Out;
    }
};

TEST_F(TAttachments, AttachmentsAreKeyedByBaseName) {
    Open(SamplePdf(1));
    const string note = Files.Write("folder/note.txt", "first");
    for (const char* contents : {"first", "second, longer"}) {
        Files.Write("folder/note.txt", contents);
        TPDFEmbeddedFiles& attached = Document.GetEmbeddedFiles();
        if (attached.Exists(note))
            attached.Delete(note);
        attached.Add(note, {}, {}, {});
        attached.Update();
    }
    EXPECT_EQ(Document.GetEmbeddedFiles().Names(), QStringList{"note.txt"});
    Save();
    EXPECT_EQ(QpdfCheck(Out), 0);
    const QJsonObject attachments = PdfJson(Out)["attachments"].toObject();
    EXPECT_EQ(attachments.keys(), QStringList{"note.txt"});
    const QJsonObject stream = attachments["note.txt"].toObject()["streams"].toObject().begin()->toObject();
    EXPECT_EQ(stream["mimetype"].toString(), "text/plain");
    EXPECT_EQ(stream["checksum"].toString(), "db68a5436e7587753f2f604eb05707b5");
    const auto shown = RunProgram("qpdf", {"--show-attachment=note.txt", Out});
    EXPECT_EQ(shown.Out, "second, longer");
    EXPECT_FALSE(Files.Read("out.pdf").contains("folder"));

    TZQPDFDocument saved(nullptr);
    saved.OpenFromFile(Out, {});
    EXPECT_TRUE(saved.GetEmbeddedFiles().Exists("/elsewhere/note.txt"));
    saved.GetEmbeddedFiles().Delete("note.txt");
    saved.GetEmbeddedFiles().Update();
    saved.SaveToPath(Out, true, false);
    EXPECT_TRUE(PdfJson(Out)["attachments"].toObject().isEmpty());
    EXPECT_THROW(saved.GetEmbeddedFiles().Add("/nowhere/x", {}, {}, {}), EFileError);
}

TEST_F(TAttachments, AnyTreeIsReadAndTakesMore) {
    const QByteArray spec = "<< /Type /Filespec /F (old.txt) /EF << /F 5 0 R >> >>";
    struct {
        QByteArray Tree;
        int Kept;
    } const cases[] = {
        {"<< >>", 0},
        {"<< /Kids [] >>", 0},
        {"<< /Kids [null 7] /Names [(a) null] >>", 0},
        {"<< /Kids [4 0 R] >>", 0}, // its own kid
        {"[(no) (dictionary)]", 0},
        {"<< /Names [(only a key)] >>", 0},
        {"<< /Names [" + spec + "] >>", 1},
        {"<< /Names [3 (k) " + spec + " (l)] >>", 1},
        {"<< /Kids [<< /Kids [<< /Names [(k) " + spec + "] >> 4 0 R] >>] >>", 1},
        {"<< /Names [(z) << /F (b.txt) >> (a) " + spec + "] >>", 2}, // out of order
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Tree.toStdString());
        Open(PdfWithCatalog("/Names << /EmbeddedFiles 4 0 R >>",
                            {c.Tree, StreamOf("old", "/Type /EmbeddedFile")}));
        EXPECT_EQ(Document.GetEmbeddedFiles().Names().size(), c.Kept);
        Attach();
        EXPECT_EQ(Attached("note.txt"), "new");
        TZQPDFDocument saved(nullptr);
        saved.OpenFromFile(Out, {});
        EXPECT_EQ(saved.GetEmbeddedFiles().Names().size(), c.Kept + 1);
    }
}

TEST_F(TAttachments, ManyGoIntoATreeOfLeavesThatOthersSearch) {
    Open(SamplePdf(1));
    TPDFEmbeddedFiles& attached = Document.GetEmbeddedFiles();
    for (int i = 0; i < 200; ++i)
        attached.Add(Note, QStringLiteral("%1.txt").arg(i), {}, {});
    attached.Update();
    Save();
    EXPECT_EQ(QpdfCheck(Out), 0);
    EXPECT_EQ(PdfJson(Out)["attachments"].toObject().size(), 200);
    EXPECT_EQ(Attached("77.txt"), "new"); // found by the limits of its leaf
}

TEST_F(TAttachments, ReplacingKeepsWhatRefersToTheFile) {
    Open(PdfWithCatalog("/Names << /EmbeddedFiles << /Names [(k) 4 0 R (twin) 6 0 R] >> >> /AF [4 0 R 6 0 R]",
                        {"<< /Type /Filespec /F (note.txt) /UF (note.txt) /Desc (Invoice) /AFRelationship "
                         "/Source /EF << /F 5 0 R >> /RF << >> >>",
                         StreamOf("old"), "<< /Type /Filespec /F (note.txt) /EF << /F 5 0 R >> >>"}));
    Attach();
    EXPECT_EQ(Attached("k"), "new");
    EXPECT_FALSE(Files.Read("out.pdf").contains("old"));
    const QJsonObject objects = PdfObjects(Out);
    const QJsonArray associated = Catalog(Out)["/AF"].toArray();
    ASSERT_EQ(associated.size(), 1) << "the second of the same name is gone";
    const QJsonObject spec = DictOf(objects, associated[0]);
    EXPECT_EQ(spec["/AFRelationship"], "/Source");
    EXPECT_EQ(spec["/Desc"], "u:Invoice");
    EXPECT_FALSE(spec.contains("/RF"));
}

TEST_F(TAttachments, PdfAFromItsThirdPartOnRelatesThem) {
    for (const int part : {2, 3, 4}) {
        Open(PdfWithCatalog("/Metadata 4 0 R", {PdfAMetadata(part)}));
        Attach();
        EXPECT_EQ(Catalog(Out)["/AF"].toArray().size(), part >= 3 ? 1 : 0) << part;
        EXPECT_EQ(Files.Read("out.pdf").contains("/AFRelationship /Unspecified"), part >= 3);
    }
}

} // namespace
