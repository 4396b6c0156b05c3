#include "engine/control/Editor.h"

#include "engine/document/Document.h"
#include "engine/render/PageBitmap.h"

#include <algorithm>

TZQPDFEditor::TZQPDFEditor(TComponent* owner) : TComponent(owner) {}

TZQPDFEditor::~TZQPDFEditor() {
    Detach();
}

void TZQPDFEditor::Detach() {
    if (FDocument && FDocument->FEditor == this)
        FDocument->FEditor = nullptr;
    FDocument = nullptr;
}

void TZQPDFEditor::setDocument(TZQPDFDocument* document) {
    if (document == FDocument)
        return;
    Detach();
    FDocument = document;
    if (!document)
        return;
    if (!document->FEditor)
        document->FEditor = this;
    FCurrentPage = document->PageTree().CurrentPage();
}

TZQPDFDocument& TZQPDFEditor::Document() const {
    if (!FDocument)
        throw EPDFError(QStringLiteral("No document is open."));
    return *FDocument;
}

int TZQPDFEditor::CurrentPage() const {
    return std::clamp(FCurrentPage, 1, std::max(Document().GetPageCount(), 1));
}

void TZQPDFEditor::SetCurrentPage(int page) {
    Document().PageTree().SetPage(page);
    FCurrentPage = page;
}

void TZQPDFEditor::renderPage(int page) {
    static_cast<void>(Document().Pages().getItem(page)); // raises if there is no such page
    Document().updatePageMru(page, {});
}

void TZQPDFEditor::InsertPages(int index, int count, Single width, Single height, bool before) {
    const quint64 current = Document().Pages().getItem(CurrentPage() - 1).Id();
    Document().InsertPages(index, count, width, height, before);
    int page = 1;
    while (Document().Pages().getItem(page - 1).Id() != current)
        ++page;
    SetCurrentPage(page);
}

void TZQPDFEditor::DeletePagesEx(const string& range) {
    SetCurrentPage(Document().DeletePageRange(range));
}

void TZQPDFEditor::RefreshView() {
    FCurrentPage = CurrentPage();
}

void TZQPDFEditor::SaveGraphicPageToBitmap(const NarrowString& fileName, int dpi) {
    SavePageBitmap(Document().Core(), CurrentPage() - 1, Widen(fileName), dpi);
}
