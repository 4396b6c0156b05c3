#include "engine/annotations/RichText.h"

#include "engine/annotations/TextWrap.h"
#include "engine/layers/Drawing.h"
#include "engine/layers/TextSource.h"

#include <algorithm>
#include <limits>

TZQLayerRichText::TZQLayerRichText(std::function<void()> changed)
    : TZQLayerText(nullptr), FOnChanged(std::move(changed)) {}

void TZQLayerRichText::Changed() {
    FOnChanged();
}

Double TZQLayerRichText::HeightWithin(Double width) const {
    Double height = 0;
    for (const TShapedLine& line :
         WrapText(Text(), Source().Style(), width, std::numeric_limits<Double>::infinity()))
        height += line.Height;
    return height;
}

void TZQLayerRichText::DrawWithin(TDrawing& to, const TGPRectF& box) const {
    const TTextPaint paint{FillColor(), StrokeColor(), Double(StrokePenWidth())};
    if (Text().isEmpty() || !(FontSize() > 0) || !BeginText(to, paint))
        return;
    Double top = to.Height - Double(box.Y);
    for (const TShapedLine& line :
         WrapText(Text(), Source().Style(), Double(box.Width), Double(box.Height))) {
        const Double indent = line.Text.isRightToLeft() ? Double(box.Width) - line.Width : 0;
        to.Fonts.ShowLine(to.Content, line, line.Size, Double(box.X) + indent, top - line.Ascent);
        top -= line.Height;
    }
    EndText(to, paint);
}

std::string TZQLayerRichText::DefaultAppearance() const {
    TFormContent appearance;
    AppendFillColor(appearance, FillColor());
    appearance.Raw("/Helv ").Number(Double(FontSize())).Raw("Tf");
    std::string text = appearance.Data();
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

string TZQLayerRichText::StyleString() const {
    const char* const styles[] = {"", "bold ", "italic ", "italic bold "};
    return QStringLiteral("font: %1%2pt '%3'; color: #%4")
        .arg(QLatin1String(styles[FontStyle() & 3]), QString::number(Double(FontSize())), FontName(),
             QString::number(FillColor().Value & 0xFFFFFF, 16).rightJustified(6, u'0'));
}
