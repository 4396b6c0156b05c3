#include "engine/watermark/WatermarkGroup.h"

#include "engine/images/ImageFile.h"
#include "engine/layers/Drawing.h"
#include "engine/pdf/Numbers.h"
#include "engine/watermark/WatermarkSettings.h"

#include <algorithm>
#include <cmath>
#include <numbers>

/// The picture in the document that it was last drawn in.
struct TPDFWatermarkGroup::TForm {
    QPDFObjectHandle Object;
};

namespace {

constexpr Double Overhang = 0.4; // of the font size: what strokes may reach beyond the lines' box

/// How far from the left or top something of that length begins, as a share of what is left over.
template <typename TPosition> Double ShareBefore(TPosition position) {
    return Double(position) / 2;
}

const TPDFWatermarkSettings& Checked(const TPDFWatermarkSettings& settings) {
    RequireLength("FontSize", Double(settings.FFontSize));
    RequireNumber("Opacity", Double(settings.FOpacity));
    RequireNumber("Rotation", Double(settings.FRotation));
    RequireNumber("Scale", Double(settings.FScale));
    RequireLength("OffsetX", Double(settings.FOffsetX));
    RequireLength("OffsetY", Double(settings.FOffsetY));
    return settings;
}

} // namespace

TPDFWatermarkGroup::TPDFWatermarkGroup(TZQPDFDocument& document, const TPDFWatermarkSettings& settings)
    : TZQPDFXObjectGroup(document, TZQPDFXObjectGroupType::Watermark),
      FColor(TGPColor::FromColorRef(Checked(settings).FColor)),
      FAlpha(int(std::lround(std::clamp(Double(settings.FOpacity), 0.0, 1.0) * 255))),
      FAngle(Double(settings.FRotation) * std::numbers::pi / 180), FScale(Double(settings.FScale)),
      FHorizontal(settings.FHorizontal), FVertical(settings.FVertical), FOffsetX(Double(settings.FOffsetX)),
      FOffsetY(Double(settings.FOffsetY)) {
    SetBehind(settings.FBehindContent);
    SetPageRange(settings.FPageRange);
    FText.SetStyle({settings.FFontName, settings.FFontStyle, Double(settings.FFontSize)});
    if (!settings.FImageFile.isEmpty()) {
        FImage = TImageFile::Load(settings.FImageFile);
        FWidth = FImage->Width();
        FHeight = FImage->Height();
    } else if (!settings.FText.trimmed().isEmpty() && FText.Style().Size > 0) {
        FText.SetText(settings.FText);
        MeasureText();
    }
}

TPDFWatermarkGroup::~TPDFWatermarkGroup() = default;

void TPDFWatermarkGroup::MeasureText() {
    for (int i = 0; i < FText.LineCount(); ++i) {
        FWidth = std::max(FWidth, FText.Line(i).Width);
        FHeight += FText.Line(i).Height;
    }
    FText.DropLines();
}

bool TPDFWatermarkGroup::ShowsNothing() const {
    return FAlpha == 0 || !(FScale > 0 && FWidth > 0 && FHeight > 0);
}

std::array<Double, 6> TPDFWatermarkGroup::PlaceOn(Double pageWidth, Double pageHeight) const {
    const Double cos = std::cos(FAngle) * FScale;
    const Double sin = std::sin(FAngle) * FScale;
    const Double width = std::abs(FWidth * cos) + std::abs(FHeight * sin); // as turned
    const Double height = std::abs(FWidth * sin) + std::abs(FHeight * cos);
    const Double left = (pageWidth - width) * ShareBefore(FHorizontal) + FOffsetX;
    const Double top = (pageHeight - height) * ShareBefore(FVertical) + FOffsetY;
    const Double middleX = left + width / 2;
    const Double middleY = pageHeight - top - height / 2;
    return {cos,
            sin,
            -sin,
            cos,
            middleX - (FWidth * cos - FHeight * sin) / 2,
            middleY - (FWidth * sin + FHeight * cos) / 2};
}

void TPDFWatermarkGroup::Draw(TDrawing& to) {
    if (ShowsNothing())
        return;
    TFormContent& content = to.Content;
    content.Op("q");
    for (const Double value : PlaceOn(to.Width, to.Height))
        content.Number(value);
    content.Op("cm");
    if (FAlpha < 255)
        content.Raw(content.UseState(to.Document.OpacityState(FAlpha, FAlpha))).Op(" gs");
    content.Raw(content.UseXObject(FormIn(to.Document).Object)).Op(" Do").Op("Q");
}

const TPDFWatermarkGroup::TForm& TPDFWatermarkGroup::FormIn(TDocumentDrawing& document) {
    if (FForm && FForm->Object.getOwningQPDF() == &document.Pdf)
        return *FForm;
    TFormContent content;
    TDrawing drawing(document, content, FWidth, FHeight);
    DrawPicture(drawing);
    const Double margin = FImage ? 0 : FText.Style().Size * Overhang;
    FForm = std::make_unique<TForm>();
    FForm->Object = content.MakeForm(document.Pdf, {-margin, -margin, FWidth + margin, FHeight + margin},
                                     {1, 0, 0, 1, 0, 0});
    // As a group, the picture is clear as a whole: parts that overlap don't show through one another.
    if (FAlpha < 255)
        FForm->Object.getDict().replaceKey("/Group", "<</Type /Group /S /Transparency>>"_qpdf);
    return *FForm;
}

void TPDFWatermarkGroup::DrawPicture(TDrawing& to) const {
    if (FImage)
        to.Images.Draw(to.Content, *FImage, 0, 0, FWidth, FHeight);
    else
        DrawLines(to);
}

/// Each line is set within the widest as the whole is on the page.
void TPDFWatermarkGroup::DrawLines(TDrawing& to) const {
    AppendFillColor(to.Content, FColor);
    Double top = FHeight;
    for (int i = 0; i < FText.LineCount(); ++i) {
        const TShapedLine& line = FText.Line(i);
        const Double left = (FWidth - line.Width) * ShareBefore(FHorizontal);
        to.Fonts.ShowLine(to.Content, line, line.Size, left, top - line.Ascent);
        top -= line.Height;
    }
    FText.DropLines();
}
