#include "engine/annotations/Annotation.h"

#include "engine/annotations/Shapes.h"
#include "engine/layers/Drawing.h"
#include "engine/pdf/Dates.h"

#include <QUuid>

namespace {

// ISO 32000-1, table 165.
constexpr int PrintFlag = 1 << 2;
constexpr int NoRotateFlag = 1 << 4;

/// Turns a form of that size, drawn upright, as the page is turned, and leaves its box in the positive
/// quarter; viewers put the box on the annotation's rectangle (12.5.5).
QPDFObjectHandle::Matrix TurnedWithPage(int rotation, Double width, Double height) {
    switch (rotation) {
    case 90:
        return {0, 1, -1, 0, height, 0};
    case 180:
        return {-1, 0, 0, -1, width, height};
    case 270:
        return {0, -1, 1, 0, 0, width};
    default:
        return {1, 0, 0, 1, 0, 0};
    }
}

} // namespace

TZQPDFAnnotation::TZQPDFAnnotation(TZQLayerCollection* collection)
    : TZQCustomLayer(collection), FId(QUuid::createUuid().toString(QUuid::WithoutBraces)),
      FCreated(QDateTime::currentDateTime()) {}

void TZQPDFAnnotation::SetContents(const string& contents) {
    FContents = contents;
    Changed();
}

void TZQPDFAnnotation::SetSubject(const string& subject) {
    FSubject = subject;
    Changed();
}

void TZQPDFAnnotation::SetAuthor(const string& author) {
    FAuthor = author;
    Changed();
}

void TZQPDFAnnotation::SetColor(TColor color) {
    FColor = color;
    Changed();
}

bool TZQPDFAnnotation::WriteAnnotation(TAnnotationDrawing& to) {
    QPDFObjectHandle annotation = QPDFObjectHandle::newDictionary();
    WriteCommonEntries(to, annotation);
    if (!WriteEntries(to, annotation))
        return false;
    WriteAppearance(to, annotation);
    DropLayout();
    to.Annotations.push_back(to.Document.Pdf.makeIndirectObject(annotation));
    return true;
}

void TZQPDFAnnotation::WriteCommonEntries(const TAnnotationDrawing& to, QPDFObjectHandle& annotation) const {
    const auto setText = [&](const char* key, const string& text) {
        if (!text.isEmpty())
            annotation.replaceKey(key, NewText(text));
    };
    const TPageBox box = Rect();
    const int flags = PrintFlag | (Turning() == TTurning::Upright ? NoRotateFlag : 0);
    annotation.replaceKey("/Type", QPDFObjectHandle::newName("/Annot"));
    annotation.replaceKey("/Subtype", QPDFObjectHandle::newName(Subtype()));
    annotation.replaceKey(
        "/Rect", QPDFObjectHandle::newArray(QPDFObjectHandle::Rectangle(box.x0, box.y0, box.x1, box.y1)));
    annotation.replaceKey("/P", to.Page);
    annotation.replaceKey("/F", QPDFObjectHandle::newInteger(flags));
    annotation.replaceKey("/M", QPDFObjectHandle::newString(PdfDate(QDateTime::currentDateTime())));
    setText("/NM", FId);
    setText("/Contents", Contents());
    if (FColor)
        annotation.replaceKey("/C", NewColor(TGPColor::FromColorRef(*FColor)));
    if (!IsMarkup())
        return;
    annotation.replaceKey("/CreationDate", QPDFObjectHandle::newString(PdfDate(FCreated)));
    setText("/T", FAuthor);
    setText("/Subj", FSubject);
}

void TZQPDFAnnotation::WriteAppearance(TAnnotationDrawing& to, QPDFObjectHandle& annotation) {
    const auto width = Double(Width());
    const auto height = Double(Height());
    if (!HasAppearance() || !(width > 0 && height > 0))
        return;
    TFormContent content;
    TDrawing drawing(to.Document, content, width, height);
    DrawAppearance(drawing);
    const int rotation = Turning() == TTurning::WithPage ? Geometry().Rotation : 0;
    QPDFObjectHandle appearance = QPDFObjectHandle::newDictionary();
    to.Document.RequireVersion(3); // gradients, and all kinds of annotations but notes
    appearance.replaceKey("/N", content.MakeForm(to.Document.Pdf, {0, 0, width, height},
                                                 TurnedWithPage(rotation, width, height)));
    annotation.replaceKey("/AP", appearance);
}

TPageBox TZQPDFAnnotation::Rect() const {
    const auto left = Double(X());
    const auto top = Double(Y());
    const TPageGeometry& page = Geometry();
    if (Turning() == TTurning::WithPage)
        return page.ToUserSpace(left, top, left + Double(Width()), top + Double(Height()));
    // Viewers turn the upright picture around this corner of the rectangle, wherever that leaves the rest.
    const TPageBox corner = page.ToUserSpace(left, top, left, top);
    return {corner.x0, corner.y0 - Double(Height()) / page.UserUnit,
            corner.x0 + Double(Width()) / page.UserUnit, corner.y0};
}
