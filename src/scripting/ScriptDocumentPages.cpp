#include "base/Exceptions.h"
#include "engine/control/Editor.h"
#include "engine/document/Document.h"
#include "scripting/ScriptDocument.h"

bool TJSPDFDocument::InsertPages(int Index, int Count, float AWidth, float AHeight, bool BeforeCurrentPage) {
    if (!Document().GetCanModifyPages())
        return false;
    if (TZQPDFEditor* editor = Document().Editor())
        editor->InsertPages(Index, Count, AWidth, AHeight, BeforeCurrentPage);
    else
        Document().InsertPages(Index, Count, AWidth, AHeight, BeforeCurrentPage);
    return true;
}

bool TJSPDFDocument::DeletePages(int Index, int Count) {
    return DeletePagesEx(QStringLiteral("%1-%2").arg(Index).arg(qint64(Index) + Count));
}

bool TJSPDFDocument::DeletePagesEx(const string& pageRange) {
    if (!Document().GetCanModifyPages())
        return false;
    if (TZQPDFEditor* editor = Document().Editor())
        editor->DeletePagesEx(pageRange);
    else
        SetCurrentPage(Document().DeletePageRange(pageRange));
    return true;
}

TJSPDFDocument* TJSPDFDocument::ExtractPages(const string& pageRange, const string& fileName,
                                             bool OverwriteExisting) {
    if (!Document().GetCanModifyPages())
        return nullptr;
    auto extracted = std::make_unique<TJSPDFDocument>();
    TZQPDFDocument& target = extracted->Document();
    if (target.ImportPagesFrom(Document(), Narrow(pageRange), -1) == 0)
        throw Exception(QStringLiteral("There is no page to extract: the range \"%1\" selects none of %2.")
                            .arg(pageRange)
                            .arg(Document().GetPageCount()));
    target.DeletePage(0); // the blank page that a new document starts with
    if (fileName.isEmpty())
        return extracted.release();
    if (OverwriteExisting)
        target.SaveCopyToFile(fileName, /*keepSource=*/true, /*takeName=*/false);
    else
        target.SaveToFreeName(fileName);
    return extracted.release();
}

bool TJSPDFDocument::CropPages(const string& pageRange, double top, double left, double right,
                               double bottom) {
    if (!Document().GetCanModifyPages())
        return false;
    TPDFMargins margins = TPDFMargins::Create(top, left, right, bottom);
    Document().CropPages(pageRange, margins);
    if (TZQPDFEditor* editor = Document().Editor())
        editor->RefreshView();
    return true;
}

/// One-based, as the engine's import takes it.
int TJSPDFDocument::InsertionIndex(bool insertAfter, TZQPDFPagePosition pagePosition) const {
    int reference = GetCurrentPage();
    if (pagePosition == TZQPDFPagePosition::ppFirst)
        reference = 1;
    else if (pagePosition == TZQPDFPagePosition::ppLast)
        reference = Document().GetPageCount();
    return insertAfter ? reference + 1 : reference;
}

bool TJSPDFDocument::ImportPages(const TFileName& fileName, const string& pageRange, bool insertAfter,
                                 TZQPDFPagePosition pagePosition) {
    if (!Document().GetCanModifyPages())
        return false;
    return Document().ImportPagesFromDocument(fileName, /*password=*/{}, pageRange,
                                              InsertionIndex(insertAfter, pagePosition), insertAfter);
}

bool TJSPDFDocument::ImportPagesFromDocument(TJSPDFDocument* Doc, const string& pageRange, bool insertAfter,
                                             TZQPDFPagePosition pagePosition) {
    if (Doc == nullptr || !Document().GetCanModifyPages())
        return false;
    return Document().ImportPagesFrom(Doc->Document(), Narrow(pageRange),
                                      InsertionIndex(insertAfter, pagePosition)) > 0;
}

bool TJSPDFDocument::RotatePages(const string& pageRange, int Angle) {
    if (Document().GetCanModifyPages())
        Document().RotatePages(pageRange, Angle);
    return false;
}

bool TJSPDFDocument::GotoPage(int pageNumber) {
    if (pageNumber > 0 && pageNumber <= Document().GetPageCount())
        SetCurrentPage(pageNumber);
    return true;
}

bool TJSPDFDocument::GotoNextPage() {
    SetCurrentPage(GetCurrentPage() + 1);
    return true;
}

bool TJSPDFDocument::GotoPreviousPage() {
    SetCurrentPage(GetCurrentPage() - 1);
    return true;
}

bool TJSPDFDocument::GotoFirstPage() {
    SetCurrentPage(1);
    return true;
}

bool TJSPDFDocument::GotoLastPage() {
    SetCurrentPage(Document().GetPageCount());
    return true;
}
