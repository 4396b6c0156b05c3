#include "engine/annotations/TextAnnotation.h"

#include "engine/annotations/Icons.h"
#include "engine/layers/Drawing.h"

namespace {
constexpr TColor NoteYellow = 0x0033CCFF;
}

TZQPDFTextAnnotation::TZQPDFTextAnnotation(TZQPDFDocument& /*document*/, TZQLayerCollection* collection,
                                           Single x, Single y, const NarrowString& icon)
    : TZQPDFAnnotation(collection), FIcon(icon) {
    SetColor(NoteYellow);
    SetBounds(TGPRectF::Create(x, y, Single(CommentIconWidth), Single(CommentIconHeight)));
}

bool TZQPDFTextAnnotation::WriteEntries(TAnnotationDrawing& /*to*/, QPDFObjectHandle& annotation) {
    annotation.replaceKey("/Name", QPDFObjectHandle::newName("/" + FIcon.toStdString()));
    annotation.replaceKey("/Open", QPDFObjectHandle::newBool(/*value=*/false));
    return true;
}

void TZQPDFTextAnnotation::DrawAppearance(TDrawing& to) {
    to.Content.Numbers({to.Width / CommentIconWidth, 0, 0, to.Height / CommentIconHeight, 0, 0}).Op("cm");
    DrawCommentIcon(to.Content, TGPColor::FromColorRef(Color()));
}
