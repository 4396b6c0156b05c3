#include "engine/layers/LayerText.h"

#include "engine/layers/Drawing.h"
#include "engine/layers/TextSource.h"
#include "engine/pdf/Numbers.h"

#include <algorithm>

TZQLayerText::TZQLayerText(TZQLayerCollection* collection)
    : TZQCustomLayer(collection), FSource(std::make_unique<TZQTextEditSource>()) {
    FSource->SetStyle({QStringLiteral("Arial"), 0, 12});
}

TZQLayerText::~TZQLayerText() = default;

void TZQLayerText::SetFont(const TFontName& name) {
    TTextStyle style = FSource->Style();
    style.Family = name;
    FSource->SetStyle(style);
    TextChanged();
}

TFontName TZQLayerText::FontName() const {
    return FSource->Style().Family;
}

void TZQLayerText::SetFontSize(Single size) {
    RequireLength("FontSize", Double(size));
    TTextStyle style = FSource->Style();
    style.Size = Double(size);
    FSource->SetStyle(style);
    TextChanged();
}

Single TZQLayerText::FontSize() const {
    return Single(FSource->Style().Size);
}

void TZQLayerText::SetFontStyle(int fontStyle) {
    TTextStyle style = FSource->Style();
    style.Style = fontStyle;
    FSource->SetStyle(style);
    TextChanged();
}

int TZQLayerText::FontStyle() const {
    return FSource->Style().Style;
}

void TZQLayerText::SetFillColor(ARGB color) {
    FFillColor = color;
    Changed();
}

void TZQLayerText::SetStrokeColor(ARGB color) {
    FStrokeColor = color;
    Changed();
}

void TZQLayerText::SetStrokePenWidth(Single width) {
    RequireLength("StrokePenWidth", Double(width));
    FStrokePenWidth = width;
    Changed();
}

void TZQLayerText::SetText(const string& text) {
    FSource->SetText(text);
    TextChanged();
}

string TZQLayerText::Text() const {
    return FSource->Text();
}

int TZQLayerText::LineCount() const {
    return FSource->LineCount();
}

void TZQLayerText::TextChanged() {
    FMetricsPending = true;
    Changed();
}

void TZQLayerText::EndUpdate() {
    CancelUpdate();
    Measure();
}

void TZQLayerText::CancelUpdate() {
    FUpdates = std::max(0, FUpdates - 1);
}

/// The size is worked out when somebody wants to know it: most texts are placed without.
void TZQLayerText::Measure() const {
    if (FMetricsPending && FUpdates == 0)
        const_cast<TZQLayerText*>(this)->RecalcTextBounds();
}

Single TZQLayerText::Width() const {
    Measure();
    return FWidth;
}

Single TZQLayerText::Height() const {
    Measure();
    return FHeight;
}

void TZQLayerText::RecalcTextBounds() {
    Double width = 0;
    Double height = 0;
    for (int i = 0; i < FSource->LineCount(); ++i) {
        width = std::max(width, FSource->Line(i).Width);
        height += FSource->Line(i).Height;
    }
    FMetricsPending = false;
    FWidth = Single(width);
    FHeight = Single(height);
}

void TZQLayerText::Draw(TDrawing& to) {
    const TTextStyle& style = FSource->Style();
    if (FSource->Text().isEmpty() || !(style.Size > 0))
        return;
    const TTextPaint paint{FFillColor, FStrokeColor, Double(FStrokePenWidth)};
    if (!BeginText(to, paint))
        return;
    auto top = Double(Y());
    for (int i = 0; i < FSource->LineCount(); ++i) {
        const TShapedLine& line = FSource->Line(i);
        to.Fonts.ShowLine(to.Content, line, style.Size, Double(X()), to.Height - top - line.Ascent);
        top += line.Height;
    }
    EndText(to, paint);
}

void TZQLayerText::DropLayout() {
    FSource->DropLines();
}
