#include "engine/control/Editor.h"
#include "engine/document/Document.h"
#include "engine/pages/PageTree.h"
#include "engine/pages/Pages.h"
#include "scripting/ScriptDocument.h"

namespace {
constexpr int CurrentPage = -1;
constexpr int LayerDpi = 72; // makes layer coordinates equal to points
bool IsSideways(int rotation) {
    return rotation == 90 || rotation == 270;
}
} // namespace

/// Of the attached editor control, if there is one.
int TJSPDFDocument::GetCurrentPage() const {
    const TZQPDFEditor* editor = Document().Editor();
    return editor ? editor->CurrentPage() : Document().PageTree().CurrentPage();
}
int TJSPDFDocument::GetPagesCount() const {
    return Document().Pages().Count();
}

void TJSPDFDocument::SetCurrentPage(int Page) {
    TZQPDFDocument& document = Document();
    if (Page <= 0 || Page > GetPagesCount() || Page == document.PageTree().CurrentPage())
        return;
    if (document.Editor())
        document.Editor()->SetCurrentPage(Page);
    else
        document.PageTree().SetPage(Page);
    RenderPageSafe(CurrentPage);
}

/// A page that can't be made ready leaves the calling method going on with a page without layers.
void TJSPDFDocument::RenderPageSafe(int Page) {
    try {
        RenderPage(Page == CurrentPage ? GetCurrentPage() - 1 : Page);
    } catch (...) { // on purpose without a trace
    }
}

/// Makes the layers of a zero-based page present and its size known, once a page.
void TJSPDFDocument::RenderPage(int Page) {
    TZQPDFDocument& document = Document();
    if (document.Editor())
        document.Editor()->renderPage(Page);
    if (Page < 0 || Page >= GetPagesCount() || document.Pages().getItem(Page).getRendered())
        return;
    // Not a guarded pair, on purpose: the engine saves a document that a failure has left locked, and the
    // lock count tells it that a page is only half ready.
    document.LockChanges();
    TZQPDFPage& page = document.Pages().getItem(Page);
    document.PageTree().SetPage(Page + 1);
    const TPDFPageAttributes attributes = document.PageTree().PageAttributes(0);
    const bool sideways = IsSideways(attributes.Rotation);
    page.SetWidth(attributes.size[sideways ? 1 : 0]);
    page.SetHeight(attributes.size[sideways ? 0 : 1]);
    document.RenderToLayers(Page, LayerDpi);
    page.SetRendered(true);
    document.updatePageMru(Page, {});
    document.UnlockChanges();
}

TPDFPageInfo TJSPDFDocument::GetPageInfo() {
    RenderPageSafe(CurrentPage);
    const int current = GetCurrentPage();
    const TPDFPageAttributes attributes = Document().PageTree().GetPageAttributes(current);
    TZQPDFPage& page = Document().Pages().getItem(current - 1);
    TPDFPageInfo info;
    info.Width = page.GetWidth();
    info.Height = page.GetHeight();
    info.Rotation = attributes.Rotation;
    info.PdfWidth = attributes.size[0];
    info.PDFHeight = attributes.size[1];
    return info;
}

bool TJSPDFDocument::SetPageMode(TPDFPageMode NewMode) {
    return Document().GetCanChangeDocument() && Document().SetPageMode(NewMode);
}

TPDFPageMode TJSPDFDocument::GetPageMode() {
    return Document().GetPageMode();
}

bool TJSPDFDocument::SetPageLayout(TPDFPageLayout NewLayout) {
    return Document().GetCanChangeDocument() && Document().SetPageLayout(NewLayout);
}

TPDFPageLayout TJSPDFDocument::GetPageLayout() {
    return Document().GetPageLayout();
}

void TJSPDFDocument::SetXMLMetaData(const NarrowString& XMP) {
    Document().SetXMLMetaData(XMP);
}
NarrowString TJSPDFDocument::GetXMLMetaData() {
    return Document().GetXMLMetaData();
}

void TJSPDFDocument::SaveGraphicPageToBitmap(const NarrowString& fileName, int DPI) {
    TZQPDFEditor editor(nullptr);
    editor.setDocument(&Document());
    editor.SetCurrentPage(GetCurrentPage());
    editor.SaveGraphicPageToBitmap(fileName, DPI);
}
