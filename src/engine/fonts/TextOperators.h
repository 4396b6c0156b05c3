#pragma once
// The operators that show a line of text, put together glyph by glyph (ISO 32000-1, 9.4).
#include "base/Text.h"

#include <string>

class TTextOperators {
public:
    /// The line's left end and baseline in points.
    TTextOperators(Double size, Double x, Double y);

    /// The resource name; a lean is the tangent by which upright letters are slanted.
    void SetFont(const std::string& name, Double lean);
    /// Shows a glyph at a place, 1/1000 em from the line's left end and its baseline; `advance` is how far
    /// the font's own widths then move on.
    void ShowGlyph(quint32 code, Double advance, Double at, Double rise);
    /// What is shown until the span is closed reads as this text (ISO 32000-1, 14.9.4).
    void OpenSpan(QStringView text);
    void CloseSpan();
    /// BT ... ET; empty if nothing was shown.
    [[nodiscard]] std::string Finish();

private:
    void Place();
    void MoveTo(Double at);
    void SetRise(Double rise);
    void EndString();
    void Flush();

    std::string FData;
    std::string FString; ///< codes of the string that is being put together, in hexadecimal: bytes would
                         ///< need escapes and compress no better
    std::string FArray;  ///< what stands before it in its TJ
    Double FSize;
    Double FX;
    Double FY;
    Double FLean = 0;
    Double FPlacedLean = 0;
    Double FPosition = 0; ///< 1/1000 em
    Double FRise = 0;
    bool FIsPlaced = false;
};
