#include "engine/annotations/StampAnnotation.h"

#include "engine/annotations/Shapes.h"
#include "engine/layers/Drawing.h"

#include <algorithm>

namespace {

constexpr int Bold = 1;
constexpr Double BorderWidth = 1.5;
// In parts of the font size.
constexpr Double SidePadding = 0.75;
constexpr Double EndPadding = 0.3; // above and below
constexpr Double Rounding = 0.4;
constexpr Double LeastWidth = 4;
constexpr int LongestName = 127; // bytes (ISO 32000-1, annex C)

/// The caption as a name. The library takes "#" for the beginning of an escape and NUL for a broken one, so
/// the first is escaped here; the second can't stand in a name (ISO 32000-1, 7.3.5).
std::string NameOf(string caption) {
    caption = caption.remove(QChar::Null).simplified();
    while (caption.toUtf8().size() > LongestName)
        caption.chop(1);
    return "/" + caption.replace(u'#', QLatin1String("#23")).toStdString();
}

} // namespace

TZQPDFStampAnnotation::TZQPDFStampAnnotation(TZQPDFDocument& /*document*/, TZQLayerCollection* collection,
                                             Single x, Single y, TColor base, TColor gradientStart,
                                             TColor gradientEnd, const string& text, const string& subject,
                                             int size)
    : TZQPDFAnnotation(collection), FBase(base), FGradientStart(gradientStart), FGradientEnd(gradientEnd) {
    FCaption.SetStyle({QStringLiteral("Arial"), Bold, Double(size)});
    SetColor(base);
    SetSubject(subject);
    SetText(text);
    MoveTo(x, y);
}

void TZQPDFStampAnnotation::SetText(const string& text) {
    FCaption.SetText(text);
    SetContents(text);
    FitSize();
}

void TZQPDFStampAnnotation::SetBaseColor(TColor color) {
    FBase = color;
    SetColor(color);
}

void TZQPDFStampAnnotation::FitSize() {
    const Double size = FCaption.Style().Size;
    Double width = 0;
    Double height = 0;
    for (int i = 0; i < FCaption.LineCount(); ++i) {
        width = std::max(width, FCaption.Line(i).Width);
        height += FCaption.Line(i).Height;
    }
    FCaption.DropLines();
    SetWidth(Single(std::max(width + 2 * (SidePadding * size + BorderWidth), LeastWidth * size)));
    SetHeight(Single(height + 2 * (EndPadding * size + BorderWidth)));
}

bool TZQPDFStampAnnotation::WriteEntries(TAnnotationDrawing& /*to*/, QPDFObjectHandle& annotation) {
    // What a viewer that draws the stamp anew writes on it.
    const std::string name = NameOf(Text());
    if (name.size() > 1)
        annotation.replaceKey("/Name", QPDFObjectHandle::newName(name));
    return true;
}

void TZQPDFStampAnnotation::DrawAppearance(TDrawing& to) {
    TFormContent& content = to.Content;
    const Double inset = BorderWidth / 2;
    const QPDFObjectHandle::Rectangle box(inset, inset, to.Width - inset, to.Height - inset);
    const Double radius = FCaption.Style().Size * Rounding;
    const QPDFObjectHandle gradient = NewVerticalGradient(TGPColor::FromColorRef(FGradientStart),
                                                          TGPColor::FromColorRef(FGradientEnd), to.Height, 0);
    content.Op("q");
    AppendRoundBox(content, box, radius);
    content.Op("W n").Raw(content.UseShading(gradient)).Op(" sh").Op("Q");
    AppendStrokeColor(content, TGPColor::FromColorRef(FBase));
    content.Number(BorderWidth).Op("w");
    AppendRoundBox(content, box, radius);
    content.Op("S");
    DrawCaption(to);
}

/// Centred on the box.
void TZQPDFStampAnnotation::DrawCaption(TDrawing& to) const {
    Double height = 0;
    for (int i = 0; i < FCaption.LineCount(); ++i)
        height += FCaption.Line(i).Height;
    AppendFillColor(to.Content, TGPColor::FromColorRef(FBase));
    Double top = (to.Height + height) / 2;
    for (int i = 0; i < FCaption.LineCount(); ++i) {
        const TShapedLine& line = FCaption.Line(i);
        to.Fonts.ShowLine(to.Content, line, line.Size, (to.Width - line.Width) / 2, top - line.Ascent);
        top -= line.Height;
    }
}
