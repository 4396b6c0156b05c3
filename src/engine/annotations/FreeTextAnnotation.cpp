#include "engine/annotations/FreeTextAnnotation.h"

#include "engine/annotations/Shapes.h"
#include "engine/layers/Drawing.h"

#include <cmath>

namespace {
constexpr Single Padding = 2; // between box and text
}

TZQPDFFreeTextAnnotation::TZQPDFFreeTextAnnotation(TZQPDFDocument& /*document*/,
                                                   TZQLayerCollection* collection, Single x, Single y,
                                                   Single width, Single height)
    : TZQPDFAnnotation(collection), FRichText([this] { Changed(); }) {
    SetBounds(TGPRectF::Create(x, y, width, height));
}

Single TZQPDFFreeTextAnnotation::Width() const {
    return FWidth > 0 ? FWidth : std::ceil(FRichText.Width()) + 2 * Padding;
}

Single TZQPDFFreeTextAnnotation::Height() const {
    return FHeight > 0 ? FHeight
                       : Single(FRichText.HeightWithin(Double(Width() - 2 * Padding))) + 2 * Padding;
}

bool TZQPDFFreeTextAnnotation::WriteEntries(TAnnotationDrawing& /*to*/, QPDFObjectHandle& annotation) {
    QPDFObjectHandle style = QPDFObjectHandle::newDictionary();
    style.replaceKey("/W", QPDFObjectHandle::newInteger(0)); // no border
    annotation.replaceKey("/BS", style);
    annotation.replaceKey("/DA", QPDFObjectHandle::newString(FRichText.DefaultAppearance()));
    annotation.replaceKey("/DS", NewText(FRichText.StyleString()));
    return true;
}

void TZQPDFFreeTextAnnotation::DrawAppearance(TDrawing& to) {
    TFormContent& content = to.Content;
    if (ChosenColor()) {
        content.Op("q");
        AppendFillColor(content, TGPColor::FromColorRef(*ChosenColor()));
        content.Numbers({0, 0, to.Width, to.Height}).Op("re f").Op("Q");
    }
    FRichText.DrawWithin(to, TGPRectF::Create(Padding, Padding, Single(to.Width) - 2 * Padding,
                                              Single(to.Height) - 2 * Padding));
}
