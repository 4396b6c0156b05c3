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
    const string In = Files.Path(QStringLiteral("in.pdf"));
    const string Out = Files.Path(QStringLiteral("out.pdf"));
    TZQPDFDocument Opened{nullptr};
    TJSPDFDocument Document;

    void Open(int pages, const TSampleOptions& options = {}) {
        MakePdf(In, pages, options);
        Opened.OpenFromFile(In, Narrow(options.UserPassword));
        Document.SetDocument(&Opened);
    }
};

TEST_F(TScriptOutlines, ItemsAreFoundByWalking) {
    Open(2);
    EXPECT_EQ(Document.NewOutline(nullptr, QStringLiteral("Überschrift 日"), 1, TPDFLinkDestKind::ldFit),
              nullptr);
    TPDFIndirect* item = Document.GetFirstOutline();
    ASSERT_NE(item, nullptr);
    Document.NewOutline(item, QStringLiteral("a"), 2, TPDFLinkDestKind::ldXYZ);
    Document.NewOutline(item, QStringLiteral("b"), 2, TPDFLinkDestKind::ldXYZ);
    TPDFIndirect* a = Document.GetFirstChildOutline(item);
    TPDFIndirect* b = Document.GetNextOutline(a);
    EXPECT_EQ(Document.GetPrevOutline(b), a) << "the same reference";
    EXPECT_EQ(Document.GetPrevOutline(a), nullptr);
    EXPECT_EQ(Document.GetNextOutline(b), nullptr);
    EXPECT_EQ(Document.GetFirstChildOutline(b), nullptr);
    EXPECT_EQ(Document.GetNextOutline(nullptr), nullptr);
    EXPECT_EQ(Document.GetOutlineCount(), 3);
    Document.SaveAs(Out);
    const QByteArray text = RunProgram("mutool", {"show", Out, "outline"}).Out;
    EXPECT_TRUE(text.contains("\"\xC3\x9C"
                              "berschrift \xE6\x97\xA5\"\t#page=1&view=Fit"))
        << text.toStdString();
    EXPECT_EQ(text.count("#page=2"), 2);
}

TEST_F(TScriptOutlines, CallsThroughTheTablesTakeWhatScriptsHold) {
    Open(2);
    const auto call = [&](const char* name, const QVariantList& arguments) {
        const auto methods = Reflection::FindMethods(*Document.metaObject(), QString::fromLatin1(name));
        return Reflection::Call(Document, methods.at(0), arguments);
    };
    call("NewOutline", {QVariant::fromValue(nullptr), "top", 1, "ldFitH"});
    const QVariant top = call("GetFirstOutline", {});
    const auto held = QVariant::fromValue<QObject*>(top.value<QObject*>()); // as a script hands it back
    call("NewOutline", {held, "below", 2, 3});
    call("SetOutlineColor", {call("GetFirstChildOutline", {held}), 255});
    EXPECT_EQ(call("GetOutlineCount", {}).toInt(), 2);
    EXPECT_TRUE(Reflection::Members(TPDFIndirect::staticMetaObject).isEmpty());
    EXPECT_TRUE(Reflection::Methods(TPDFIndirect::staticMetaObject).isEmpty());
}

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

TEST_F(TScriptOutlines, ARefusedPermissionChangesNothing) {
    Open(1, {.Outlines = true,
             .UserPassword = QStringLiteral("open"),
             .OwnerPassword = QStringLiteral("own"),
             .Restrictions = {QStringLiteral("--modify=none")}});
    EXPECT_EQ(Document.NewOutline(nullptr, QStringLiteral("x"), 99, TPDFLinkDestKind::ldFit), nullptr);
    EXPECT_EQ(Document.GetOutlineCount(), 1);
    EXPECT_FALSE(Document.SetOutlineColor(Document.GetFirstOutline(), 0xFF));
    Document.SaveAs(Out);
    EXPECT_FALSE(RunProgram("qpdf", {"--password=own", "--decrypt", "--qdf", Out, "-"}).Out.contains("/C ["));
}

TEST_F(TScriptOutlines, AnAttachedEditorKeepsInStep) {
    Open(4);
    TZQPDFEditor editor(nullptr);
    editor.setDocument(&Opened);
    Document.GotoPage(3);
    EXPECT_EQ(editor.CurrentPage(), 3);
    Document.InsertPages(1, 1, 50, 50, /*BeforeCurrentPage*/ true);
    EXPECT_EQ(editor.CurrentPage(), 4);
    Document.DeletePagesEx(QStringLiteral("2-4"));
    EXPECT_EQ(editor.CurrentPage(), 2);
    Document.CropPages(QStringLiteral("2"), 100, 0, 0, 0);
    editor.SetCurrentPage(1); // as its user does; the script document follows
    EXPECT_EQ(Document.GetPageInfo().PdfWidth, 50);
}

TEST_F(TScriptOutlines, ThePictureShowsWhatWaitsToBeSaved) {
    const auto ink = [&] {
        Document.SaveGraphicPageToBitmap(Narrow(Files.Path(QStringLiteral("page.bmp"))), 72);
        const QByteArray pixels = Files.Read(QStringLiteral("page.bmp")).mid(54);
        return std::accumulate(pixels.begin(), pixels.end(), 0.0,
                               [](double sum, char c) { return sum + 255 - quint8(c); });
    };
    Open(1);
    const double before = ink();
    Document.AddText(QStringLiteral("WWWWWWWW"), QStringLiteral("DejaVu Sans"), 40, 0xFF000000, 72, 72);
    const double after = ink();
    EXPECT_GT(after, 1.5 * before);
    Document.SaveAs(Out);
    EXPECT_NEAR(ink(), after, after / 1000) << "once, not twice";
    EXPECT_EQ(RunProgram("pdftotext", {Out, "-"}).Out.count("WWWWWWWW"), 1);
}

TEST_F(TScriptOutlines, ThePictureIsOfTheCurrentPageAndLeavesNoEditor) {
    MakePdf(Files.Path(QStringLiteral("small.pdf")), 1, {.MediaBox = "0 0 72 36"});
    Open(2);
    Document.ImportPages(Files.Path(QStringLiteral("small.pdf")), QStringLiteral("1"), /*insertAfter*/ true,
                         TZQPDFPagePosition::ppLast);
    Document.GotoLastPage();
    Document.SaveGraphicPageToBitmap(Narrow(Files.Path(QStringLiteral("page.png"))), 100);
    EXPECT_EQ(Opened.Editor(), nullptr);
    EXPECT_EQ(Files.Read(QStringLiteral("page.png")).mid(16, 8), QByteArray("\0\0\0\x64\0\0\0\x32", 8));
}

} // namespace
