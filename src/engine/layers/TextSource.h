#pragma once
// The text of a text layer in lines, and where each character of a line stands.
#include "engine/fonts/TextShaper.h"

#include <vector>

class TZQTextEditSource {
public:
    /// Lines end at a line feed, a carriage return or both.
    void SetText(const string& text);
    void SetStyle(const TTextStyle& style);
    [[nodiscard]] const string& Text() const { return FText; }
    [[nodiscard]] const TTextStyle& Style() const { return FStyle; }

    /// At least 1.
    [[nodiscard]] int LineCount() const;
    /// One item a character, in the order of the text, and a last one for the line's end.
    [[nodiscard]] const TCharsInfoList& GetCharsInfo(int line) const { return Line(line).Chars; }
    /// Distance to the next line's place in points.
    [[nodiscard]] Single LineHeight(int line) const { return Single(Line(line).Height); }
    [[nodiscard]] const TShapedLine& Line(int line) const { return Lines()[size_t(line)]; }

    /// Frees the lines, which are made again when they are next asked for.
    void DropLines() const { FLines.clear(); }

private:
    [[nodiscard]] const std::vector<TShapedLine>& Lines() const;

    string FText;
    TTextStyle FStyle;
    mutable std::vector<TShapedLine> FLines;
};
