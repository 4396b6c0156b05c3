// The script document's outline, its editor control and its pictures.
#include "engine/control/Editor.h"
#include "engine/document/Document.h"
#include "scripting/ScriptDocument.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <numeric>

namespace {

struct TScriptOutlines : testing::Test {
    const TWorkspace Files;
    const string In = Files.Path("in.pdf");
    const string Out = Files.Path("out.pdf");
    TZQPDFDocument Opened{nullptr};
    TJSPDFDocument Document;

    void Open(int pages, const TSampleOptions& options = {}) {
        MakePdf(In, pages, options);
        Opened.OpenFromFile(In, Narrow(options.UserPassword));
        Document.SetDocument(&Opened);
    }
};

TEST_F(TScriptOutlines, ColoursGoIntoTheItemWithoutAWord) {
    Open(1, {.Outlines = true});
    EXPECT_FALSE(Document.SetOutlineColor(Document.GetFirstOutline(), 0x0033FF)); // red, then a fifth of blue
    EXPECT_FALSE(Opened.GetModified());
    EXPECT_FALSE(Document.SetOutlineColor(nullptr, 0xFF));
    TZQPDFDocument other(nullptr);
    other.NewOutline(nullptr, "x", 1, TPDFLinkDestKind::ldFit);
    EXPECT_FALSE(Document.SetOutlineColor(other.FirstOutline(), 0xFF));
    Document.SaveAs(Out);
    EXPECT_TRUE(RunProgram("qpdf", {"--qdf", Out, "-"}).Out.simplified().contains("/C [ 1 0.2 0 ]"));
}

TEST_F(TScriptOutlines, ThePictureShowsWhatWaitsToBeSaved) {
    const auto ink = [&] {
        Document.SaveGraphicPageToBitmap(Narrow(Files.Path("page.bmp")), 72);
        const QByteArray pixels = Files.Read("page.bmp").mid(54);
        return std::accumulate(pixels.begin(), pixels.end(), 0.0,
                               [](double sum, char c) { return sum + 255 - quint8(c); });
    };
    Open(1);
    const double before = ink();
    Document.AddText("WWWWWWWW", "DejaVu Sans", 40, 0xFF000000, 72, 72);
    const double after = ink();
    EXPECT_GT(after, 1.5 * before);
    Document.SaveAs(Out);
    EXPECT_NEAR(ink(), after, after / 1000) << "once, not twice";
    EXPECT_EQ(RunProgram("pdftotext", {Out, "-"}).Out.count("WWWWWWWW"), 1);
}

TEST_F(TScriptOutlines, ThePictureIsOfTheCurrentPageAndLeavesNoEditor) {
    MakePdf(Files.Path("small.pdf"), 1, {.MediaBox = "0 0 72 36"});
    Open(2);
    Document.ImportPages(Files.Path("small.pdf"), "1", /*insertAfter*/ true, TZQPDFPagePosition::ppLast);
    Document.GotoLastPage();
    Document.SaveGraphicPageToBitmap(Narrow(Files.Path("page.png")), 100);
    EXPECT_EQ(Opened.Editor(), nullptr);
    EXPECT_EQ(Files.Read("page.png").mid(16, 8), QByteArray("\0\0\0\x64\0\0\0\x32", 8));
}

} // namespace
