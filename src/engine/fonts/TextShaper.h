#pragma once
// From a line of text to glyphs: fonts by family and style with fallback for what they lack, order of mixed
// writing directions, shaping, and the measures of each character. May be called on any thread.
#include "base/Text.h"

#include <memory>
#include <vector>

class TFontFace; ///< A face of a font file, shared between documents.

struct TTextStyle {
    string Family; ///< as people name it; empty for "Arial"
    int Style = 0; ///< 0 normal, 1 bold, 2 italic, 3 both
    Double Size = 12;
};

/// Measures in points at the line's size.
struct TShapedGlyph {
    quint32 Glyph = 0;
    quint32 Cluster = 0; ///< index into the line's text of the first character that it shows
    Single Advance = 0;
    Single OffsetX = 0;
    Single OffsetY = 0; ///< upwards
};

/// Characters of one face and direction.
struct TShapedRun {
    std::shared_ptr<const TFontFace> Face;
    bool RightToLeft = false;
    quint32 Start = 0; ///< its characters in the line's text: from Start to before End
    quint32 End = 0;
    std::vector<TShapedGlyph> Glyphs; ///< from left to right
};

/// The box of a character, in points from the line's left end and top. `x` is where the character begins and
/// x + width where it ends, so that width is negative in writing from right to left: the largest x of a line
/// is then its width whichever way it runs.
struct TCharInfo {
    Single x = 0, y = 0, width = 0, height = 0;
};

/// One item for each UTF-16 unit in the order of the text, and a last one, without width, for the line's end.
class TCharsInfoList {
public:
    TCharsInfoList() = default;
    explicit TCharsInfoList(std::vector<TCharInfo> items) : FItems(std::move(items)) {}
    [[nodiscard]] int Count() const { return int(FItems.size()); }
    [[nodiscard]] const TCharInfo& GetItem(int index) const { return FItems.at(size_t(index)); }

private:
    std::vector<TCharInfo> FItems;
};

struct TShapedLine {
    string Text;
    Double Size = 0; ///< that it was shaped for
    Double Width = 0;
    Double Ascent = 0;
    Double Descent = 0;           ///< downwards from the baseline, so positive
    Double Height = 0;            ///< from baseline to baseline
    std::vector<TShapedRun> Runs; ///< from left to right
    TCharsInfoList Chars;
};

/// Shapes one line. Line breaks and other control characters show nothing, a tab is four blanks wide. What no
/// font has is shown by the family's own sign for a missing glyph. Raises Exception where the system has no
/// font at all that may be embedded.
[[nodiscard]] TShapedLine ShapeLine(const string& text, const TTextStyle& style);
