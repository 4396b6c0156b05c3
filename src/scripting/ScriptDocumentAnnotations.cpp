// Annotations that actions and scripts put on the current page.
#include "engine/document/Document.h"
#include "engine/macros/Macros.h"
#include "engine/pdf/Numbers.h"
#include "engine/watermark/ObjectsRepository.h"
#include "scripting/ScriptDocument.h"

namespace {
// What callers record of a page (engine/pages/Pages.h).
constexpr quint32 AnnotationsChanged = 4;
constexpr int StampFontSize = 16;

/// Before anything is made, so that a script that catches the error leaves nothing half made on the page.
void RequirePlace(Double X, Double Y) {
    RequireLength("X", X);
    RequireLength("Y", Y);
}

void RequireBox(Double X, Double Y, Double Width, Double Height) {
    RequirePlace(X, Y);
    RequireLength("Width", Width);
    RequireLength("Height", Height);
}
} // namespace

TZQPDFTextAnnotation* TJSPDFDocument::AddNoteAnnotation(float X, float Y, TColor Color) {
    if (!Document().GetCanModifyAnnots())
        return nullptr;
    RequirePlace(Double(X), Double(Y));
    auto* note = new TZQPDFTextAnnotation(Document(), &LayersToFill(), X, Y, "Comment");
    note->SetColor(Color);
    MarkPageChanged(AnnotationsChanged);
    return note;
}

TZQPDFStampAnnotation* TJSPDFDocument::AddStampAnnotation(double X, double Y, const string& Text,
                                                          const string& Subject, TColor baseColor,
                                                          TColor BgGradientStartColor,
                                                          TColor BgGradientEndColor) {
    if (!Document().GetCanModifyAnnots())
        return nullptr;
    RequirePlace(X, Y);
    TZQLayerCollection& layers = LayersToFill();
    auto* stamp = new TZQPDFStampAnnotation(Document(), &layers, Single(X), Single(Y), baseColor,
                                            BgGradientStartColor, BgGradientEndColor,
                                            formatVarString(&Document(), Text), Subject, StampFontSize);
    MarkPageChanged(AnnotationsChanged);
    return stamp;
}

TZQPDFStampAnnotation* TJSPDFDocument::AddStampAnnotationDefined(const string& name) {
    const QMap<string, QStringList> categories = GetObjectsRepository().GetCategories();
    for (auto category = categories.begin(); category != categories.end(); ++category)
        for (const string& stamp : *category)
            // On purpose without consequence, whether it matches or not: lists that name stamps run as they
            // always did, and put none on the page.
            static_cast<void>(category.key() + u'.' + stamp == name);
    return nullptr;
}

TZQPDFFileAttachementAnnotation* TJSPDFDocument::AddFileAttachAnnotation(double X, double Y,
                                                                         const TFileName& fileName) {
    if (!Document().GetCanModifyAnnots())
        return nullptr;
    RequirePlace(X, Y);
    auto* attachment =
        new TZQPDFFileAttachementAnnotation(Document(), &LayersToFill(), Single(X), Single(Y), "paperclip");
    attachment->SetDiskFilename(Narrow(fileName));
    MarkPageChanged(AnnotationsChanged);
    return attachment;
}

TZQPDFLinkAnnotation* TJSPDFDocument::AddLinkAnnotation(float X, float Y, float Width, float Height,
                                                        int pageNum) {
    if (!Document().GetCanModifyAnnots())
        return nullptr;
    RequireBox(Double(X), Double(Y), Double(Width), Double(Height));
    TZQLayerCollection& layers = LayersToFill();
    auto* link = new TZQPDFLinkAnnotation(Document().Pages().getItem(pageNum - 1), &layers);
    link->SetBounds(TGPRectF::Create(X, Y, Width, Height));
    MarkPageChanged(AnnotationsChanged);
    return link;
}

/// Records no change, on purpose, unlike its kin: scripts tell by the modified state whether anything else
/// was done. The link is saved all the same.
TZQPDFLinkAnnotation* TJSPDFDocument::AddWebAnnotation(float X, float Y, float Width, float Height,
                                                       const string& uri) {
    if (!Document().GetCanModifyAnnots())
        return nullptr;
    RequireBox(Double(X), Double(Y), Double(Width), Double(Height));
    return TZQPDFLinkAnnotation::CreateURI(Document(), &LayersToFill(), X, Y,
                                           Single(Double(X) + Double(Width)),
                                           Single(Double(Y) + Double(Height)), Narrow(uri));
}

TZQPDFFreeTextAnnotation* TJSPDFDocument::AddFreeTextAnnotation(const string& Text, float X, float Y,
                                                                float Width, float Height) {
    if (!Document().GetCanModifyAnnots())
        return nullptr;
    RequireBox(Double(X), Double(Y), Double(Width), Double(Height));
    auto* box = new TZQPDFFreeTextAnnotation(Document(), &LayersToFill(), X, Y, Width, Height);
    box->RichText()->SetText(Text);
    MarkPageChanged(AnnotationsChanged);
    return box;
}
