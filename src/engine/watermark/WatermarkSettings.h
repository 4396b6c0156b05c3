#pragma once
// The description of a watermark: a text or an image that is put on many pages alike. Visible to scripts and
// files.
#include "engine/pdf/Types.h"
#include "xml/XmlMarks.h"

class TZQPDFDocument;
class TZQPDFXObjectGroup;

class TPDFWatermarkSettings : public QObject {
    Q_OBJECT
    XML_ROOT("Watermark", false)
public:
    Q_INVOKABLE TPDFWatermarkSettings() = default;

    PUBLISHED(string, Text, FText); ///< may have several lines
    PUBLISHED(TFontName, FontName, FFontName) = "Arial";
    PUBLISHED(Single, FontSize, FFontSize) = 72;   ///< points
    PUBLISHED(Integer, FontStyle, FFontStyle) = 0; ///< 0 normal, 1 bold, 2 italic, 3 both
    PUBLISHED(TColor, Color, FColor) = 0x00808080; ///< of the text, 0x00BBGGRR
    PUBLISHED(TFileName, ImageFile, FImageFile);   ///< if there is one, it is shown and the text isn't
    PUBLISHED(Single, Opacity, FOpacity) = 0.5;    ///< 0 clear to 1 opaque
    PUBLISHED(Single, Rotation, FRotation) = 45;   ///< degrees counter-clockwise on the page as displayed
    PUBLISHED(Single, Scale, FScale) = 1;          ///< of the natural size
    /// Which side of the page the turned watermark touches, or the middle.
    PUBLISHED(TPDFHorizontalPosition, HorizontalPosition, FHorizontal) = TPDFHorizontalPosition::hpCenter;
    PUBLISHED(TPDFVerticalPosition, VerticalPosition, FVertical) = TPDFVerticalPosition::vpCenter;
    PUBLISHED(Single, OffsetX, FOffsetX) = 0; ///< points from there to the right
    PUBLISHED(Single, OffsetY, FOffsetY) = 0; ///< points from there downwards
    PUBLISHED(string, PageRange, FPageRange); ///< engine/pages/PageRange.h; empty for all pages
    PUBLISHED(Boolean, BehindContent, FBehindContent) = false;

    /// Copies the values of `Other`; null changes nothing.
    Q_INVOKABLE void Assign(TPDFWatermarkSettings* Other);
    /// What the file lacks keeps its value. Raises EFileError or EXmlError.
    Q_INVOKABLE void LoadFromFile(const TFileName& FileName);
    Q_INVOKABLE void SaveToFile(const TFileName& FileName);

    /// The watermark as a group for TZQPDFDocument::updateWatermark; it doesn't follow later changes of the
    /// settings. `cached` hands it to the document, else it is the caller's. Raises EFileError or EPDFError
    /// where the image can't be read or a number is none that a page can hold.
    [[nodiscard]] TZQPDFXObjectGroup* CreateXObject(TZQPDFDocument& document, bool cached) const;
};
