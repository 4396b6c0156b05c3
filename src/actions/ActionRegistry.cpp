#include "actions/ActionRegistry.h"

#include "actions/AnnotationActions.h"
#include "actions/ContentActions.h"
#include "actions/JavaScriptAction.h"
#include "actions/NavigationActions.h"
#include "actions/PageActions.h"
#include "actions/SecurityActions.h"
#include "actions/WatermarkActions.h"

namespace {

constexpr Integer NoImage = -1;
/// Of the last rows about pages alone; it is what hosts have always been given.
constexpr Integer PageImage = 1;

// The spelling of the last but one stays: hosts and stored settings of theirs know the category by it.
constexpr char Protection[] = "Protection";
constexpr char Annotations[] = "Annotations";
constexpr char PageContents[] = "Page Contents";
constexpr char Pages[] = "Pages";
constexpr char GoTo[] = "Go to";
constexpr char DocumentProperties[] = "Document properies";
constexpr char Advanced[] = "Advanced";

struct TRow {
    const QMetaObject* Class;
    const char* Title;
    const char* Category;
    Integer ImageIndex;
};

const TRow Rows[] = {
    {&TPDFActionEncrypt::staticMetaObject, "Password Protect Document", Protection, NoImage},
    {&TPDFActionDecrypt::staticMetaObject, "Decrypt document", Protection, NoImage},
    {&TPDFActionAddFileAttachment::staticMetaObject, "Attach file in document", Annotations, NoImage},
    {&TPDFActionAddStampAnnotation::staticMetaObject, "Add Stamp Annotation", Annotations, NoImage},
    {&TPDFActionAddFileAttachAnnotation::staticMetaObject, "Add File Attach Annotation", Annotations,
     NoImage},
    {&TPDFActionAddLinkAnnotation::staticMetaObject, "Add Link Annotation", Annotations, NoImage},
    {&TPDFActionAddWebLinkAnnotation::staticMetaObject, "Add Web Link Annotation", Annotations, NoImage},
    {&TPDFActionAddFreeTextAnnotation::staticMetaObject, "Add Free Text Annotation", Annotations, NoImage},
    {&TPDFActionAddNoteAnnotation::staticMetaObject, "Add Note Annotation", Annotations, NoImage},
    {&TPDFActionAddText::staticMetaObject, "Add Text", PageContents, NoImage},
    {&TPDFActionAddImage::staticMetaObject, "Add Image", PageContents, NoImage},
    {&TPDFActionImportPages::staticMetaObject, "Import pages", Pages, NoImage},
    {&TPDFActionRotatePages::staticMetaObject, "Rotate pages", Pages, NoImage},
    {&TPDFActionAddWatermarkDefined::staticMetaObject, "Add defined watermark", Pages, NoImage},
    {&TPDFActionAddWatermark::staticMetaObject, "Add watermark", Pages, NoImage},
    {&TPDFActionAddBatesNumbering::staticMetaObject, "Add bates numbering", Pages, NoImage},
    {&TPDFActionInsertPages::staticMetaObject, "Insert Empty Pages", Pages, NoImage},
    {&TPDFActionDeletePages::staticMetaObject, "Delete Pages", Pages, NoImage},
    {&TPDFActionDeletePagesEx::staticMetaObject, "Delete Pages by range", Pages, NoImage},
    {&TPDFActionExtractPages::staticMetaObject, "Extract Pages", Pages, NoImage},
    {&TPDFActionCropPages::staticMetaObject, "Crop Pages", Pages, PageImage},
    {&TPDFActionGotoPage::staticMetaObject, "Goto page", GoTo, PageImage},
    {&TPDFActionGotoNextPage::staticMetaObject, "Goto Next Page", GoTo, PageImage},
    {&TPDFActionGotoPreviousPage::staticMetaObject, "Goto Previous Page", GoTo, PageImage},
    {&TPDFActionGotoFirstPage::staticMetaObject, "Goto First Page", GoTo, PageImage},
    {&TPDFActionGotoLastPage::staticMetaObject, "Goto Last Page", GoTo, PageImage},
    {&TPDFActionDocumentInitialView::staticMetaObject, "Initial View", DocumentProperties, NoImage},
    {&TPDFActionAddDocumentDescription::staticMetaObject, "Add document description", DocumentProperties,
     NoImage},
    {&TPDFActionJavaScript::staticMetaObject, "PDF Javascript", Advanced, NoImage},
};

using TRegisteredActions = QList<TPDFActionManager::TRegisteredAction>;

void Append(TRegisteredActions& list, const QMetaObject& cl, const string& title, const string& category,
            Integer imageIndex) {
    TPDFActionManager::TRegisteredAction row(cl);
    row.title = title;
    row.category = category;
    row.imageIndex = imageIndex;
    list.append(row);
}

TRegisteredActions OwnActions() {
    TRegisteredActions list;
    for (const TRow& row : Rows)
        Append(list, *row.Class, QString::fromLatin1(row.Title), QString::fromLatin1(row.Category),
               row.ImageIndex);
    return list;
}

} // namespace

TRegisteredActions& RegisteredActions() {
    static TRegisteredActions list = OwnActions();
    return list;
}

QStringList& ActionCategories() {
    static QStringList categories;
    return categories;
}

void RegisterAction(const QMetaObject& cl, const string& title, const string& category, Integer imageIndex) {
    Append(RegisteredActions(), cl, title, category, imageIndex);
}

void CollectActionCategories() {
    for (const TPDFActionManager::TRegisteredAction& row : RegisteredActions())
        if (!ActionCategories().contains(row.category, Qt::CaseInsensitive))
            ActionCategories().append(row.category);
}
