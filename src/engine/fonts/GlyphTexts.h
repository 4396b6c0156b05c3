#pragma once
// The glyphs of one embedded font that a document uses, and the text that readers are told each stands for.
#include "engine/fonts/FontFace.h"
#include "engine/fonts/ShapedClusters.h"

#include <string>
#include <vector>

class TGlyphTexts {
public:
    struct TGlyph {
        quint32 Number = 0;
        Double Advance = 0; ///< 1/1000 em
        string Text;        ///< empty while unknown
    };

    /// Takes in the glyphs of a cluster and what they show. True if their own texts, one after the other in
    /// the order of reading, give `text`; else the place needs to say it by itself.
    [[nodiscard]] bool Note(const TFontFace& face, const TShapedCluster& cluster, QStringView text,
                            bool rightToLeft);

    /// Takes over glyphs that were noted before, in another run; nothing may be noted yet.
    void GoOnWith(const std::vector<TGlyph>& glyphs);

    [[nodiscard]] Double Advance(quint32 glyph) const { return FGlyphs[FIndexes[glyph] - 1].Advance; }
    [[nodiscard]] size_t Count() const { return FGlyphs.size(); }
    /// Sorted by number.
    [[nodiscard]] std::vector<TGlyph> Glyphs() const;

private:
    [[nodiscard]] TGlyph& Use(const TFontFace& face, quint32 glyph);
    /// The first text of a glyph is the one that it keeps.
    static void Tell(TGlyph& glyph, const string& text);
    [[nodiscard]] bool NoteSeveral(const TFontFace& face, const TShapedCluster& cluster, QStringView text,
                                   bool rightToLeft);

    std::vector<quint32> FIndexes; ///< by glyph number, index + 1
    std::vector<TGlyph> FGlyphs;   ///< in the order of their first use
};

/// The characters of a text that readers should get: four blanks for tabs, nothing for other controls and for
/// marks of writing direction, which readers find by themselves.
[[nodiscard]] string ReadableText(QStringView text);
/// Whether there is nothing to take out.
[[nodiscard]] bool IsReadable(QStringView text);

/// The ToUnicode CMap (ISO 32000-1, 9.10.3).
[[nodiscard]] std::string ToUnicodeMap(const std::vector<TGlyphTexts::TGlyph>& glyphs);

/// UTF-16, big-endian, in hexadecimal digits.
void AppendUtf16(std::string& data, QStringView text);
/// Four hexadecimal digits.
void AppendHex(std::string& data, quint32 value);
