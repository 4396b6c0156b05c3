#pragma once
// A line of text cut into pieces that can be shaped in one go: of one face, script and writing direction.
#include "engine/fonts/FontChain.h"

#include <vector>

struct TTextItem {
    quint32 Start = 0; ///< UTF-16 units of the line
    quint32 End = 0;
    TFacePtr Face;
    quint32 Script = 0; ///< ISO 15924 tag, as HarfBuzz has it
    quint8 Level = 0;   ///< of embedding; odd ones run from right to left (UAX #9)
};

struct TItemizedText {
    string Shown;                 ///< the text with what control characters show in their place
    std::vector<TTextItem> Items; ///< from left to right
};

/// The paragraph's direction is that of its first letter.
[[nodiscard]] TItemizedText Itemize(const string& text, TFontChain& fonts);

inline constexpr int BlanksOfTab = 4;

/// Control characters and line breaks, which show nothing.
[[nodiscard]] inline bool IsControl(QChar c) {
    constexpr char16_t LineSeparator = 0x2028;
    constexpr char16_t ParagraphSeparator = 0x2029;
    return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0) || c == LineSeparator ||
           c == ParagraphSeparator;
}

/// Marks of writing direction, which act on the order of a line and are not text that anybody reads.
[[nodiscard]] inline bool IsDirectionMark(QChar c) {
    return c == u'\u061C' || c == u'\u200E' || c == u'\u200F' || (c >= u'\u202A' && c <= u'\u202E') ||
           (c >= u'\u2066' && c <= u'\u2069');
}

/// Whether a character is shown beside the one before it, not over it or not at all.
[[nodiscard]] inline bool TakesRoom(char32_t c) {
    return !QChar::isMark(c) && QChar::category(c) != QChar::Other_Format;
}
