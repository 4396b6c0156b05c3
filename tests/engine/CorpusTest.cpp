// Files that nobody made for us: opened, worked on as the run does, and judged by others.
#include "engine/CorpusFiles.h"
#include "engine/document/Document.h"

namespace {

TEST_F(TCorpus, GoodAndRepairableFilesAreRotatedDescribedAndSaved) {
    const TWorkspace files;
    const string out = files.Path("out.pdf");
    for (const TCorpusFile& file : CorpusFiles({"ok", "damaged-recoverable"})) {
        SCOPED_TRACE(file.Path.toStdString());
        if (!HasReadableTree(file)) {
            EXPECT_THROW(static_cast<void>(TPDFDocument::IsPasswordProtected(file.Path)), EPDFError);
            continue;
        }
        EXPECT_FALSE(TPDFDocument::IsPasswordProtected(file.Path));
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(file.Path, {});
        EXPECT_EQ(document.GetPageCount(), file.Pages);
        std::vector<int> rotations;
        for (int i = 0; i < document.GetPageCount(); ++i)
            rotations.push_back(document.Pages().getItem(i).Geometry().Rotation);
        document.RotatePages({}, 90);
        document.SetInfoString("Title", "Titel Ω", false);
        document.SaveToPath(out, /*keepSource*/ true, /*takeName*/ false);
        EXPECT_LE(QpdfCheck(out), file.QpdfExit == 3 ? 3 : 0);
        EXPECT_EQ(PdfInfo(out, "Pages").toInt(), file.Pages);
        // What had no /Info and may be a PDF 2.0 says it in its XMP packet alone.
        const string told = PdfInfo(out, "Title");
        EXPECT_TRUE(told == QStringLiteral("Titel Ω") ||
                    (told.isEmpty() && RunProgram("pdfinfo", {"-meta", out}).Out.contains("Titel Ω")));
        TZQPDFDocument saved(nullptr);
        saved.OpenFromFile(out, {});
        ASSERT_EQ(saved.GetPageCount(), file.Pages);
        for (int i = 0; i < saved.GetPageCount(); ++i)
            ASSERT_EQ(saved.Pages().getItem(i).Geometry().Rotation, (rotations[size_t(i)] + 90) % 360);
    }
}

TEST_F(TCorpus, PagesCanBeTakenOutAndPutTogether) {
    const TWorkspace files;
    const string out = files.Path("out.pdf");
    TZQPDFDocument all(nullptr);
    int expected = 1;
    for (const TCorpusFile& file : CorpusFiles({"ok", "damaged-recoverable"})) {
        SCOPED_TRACE(file.Path.toStdString());
        if (file.Pages > 50 || !HasReadableTree(file))
            continue;
        TZQPDFDocument source(nullptr);
        source.OpenFromFile(file.Path, {});
        TZQPDFDocument extract(nullptr);
        ASSERT_EQ(extract.ImportPagesFrom(source, "last", -1), 1);
        extract.DeletePage(0);
        extract.SaveCopyToFile(out, /*keepSource*/ true, /*takeName*/ false);
        EXPECT_LE(QpdfCheck(out), file.QpdfExit == 3 ? 3 : 0);
        EXPECT_EQ(PdfInfo(out, "Pages"), "1");
        EXPECT_EQ(CountOfType(out, "/Page"), 1);
        expected += all.ImportPagesFrom(source, "1,last", 1);
        if (source.GetPageCount() > 1) {
            source.DeletePageRange("1");
            source.SaveToPath(out, true, false);
            EXPECT_LE(QpdfCheck(out), file.QpdfExit == 3 ? 3 : 0);
            EXPECT_EQ(PdfInfo(out, "Pages").toInt(), file.Pages - 1);
        }
    }
    all.SaveToPath(out, true, false);
    EXPECT_LE(QpdfCheck(out), 3);
    EXPECT_EQ(PdfInfo(out, "Pages").toInt(), expected);
}

TEST_F(TCorpus, SignaturesAreCounted) {
    int found = 0;
    for (const TCorpusFile& file : CorpusFiles({"ok", "damaged-recoverable"})) {
        if (!file.Name.contains("signed"))
            continue;
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(file.Path, {});
        const QByteArray judged = RunProgram("pdfsig", {"-nocert", file.Path}).Out;
        EXPECT_EQ(document.GetSignaturesCount(), judged.count("Signature #")) << file.Path.toStdString();
        found += document.GetSignaturesCount();
    }
    EXPECT_GT(found, 0);
}

} // namespace
