#pragma once
// A watermark on pages of any size: drawn once in its own natural size, then placed on each page by its
// position, turn, scale and offset.
#include "engine/layers/TextSource.h"
#include "engine/layers/XObjectGroup.h"
#include "engine/pdf/Types.h"

#include <array>

class TImageFile;
class TPDFWatermarkSettings;
struct TDocumentDrawing;

class TPDFWatermarkGroup : public TZQPDFXObjectGroup {
public:
    /// Raises EFileError or EPDFError where the image can't be read.
    TPDFWatermarkGroup(TZQPDFDocument& document, const TPDFWatermarkSettings& settings);
    ~TPDFWatermarkGroup() override;

    void Draw(TDrawing& to) override;

private:
    struct TForm;

    void MeasureText();
    [[nodiscard]] bool ShowsNothing() const;
    /// The matrix that places the picture's box on a page of that size, y up.
    [[nodiscard]] std::array<Double, 6> PlaceOn(Double pageWidth, Double pageHeight) const;
    const TForm& FormIn(TDocumentDrawing& document);
    void DrawPicture(TDrawing& to) const;
    void DrawLines(TDrawing& to) const;

    TZQTextEditSource FText;
    ARGB FColor;
    std::shared_ptr<const TImageFile> FImage; // null for a text
    int FAlpha = 0;                           // 0 to 255
    Double FAngle = 0;                        // radians
    Double FScale = 1;
    TPDFHorizontalPosition FHorizontal;
    TPDFVerticalPosition FVertical;
    Double FOffsetX = 0;
    Double FOffsetY = 0;
    Double FWidth = 0; // natural size in points
    Double FHeight = 0;
    std::unique_ptr<TForm> FForm;
};
