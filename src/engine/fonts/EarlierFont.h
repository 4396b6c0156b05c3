#pragma once
// Fonts that an earlier run has put into a document: told from others by what they consist of.
#include "engine/fonts/GlyphTexts.h"
#include "engine/pdf/Qpdf.h"

/// The objects of an embedded font.
struct TFontObjects {
    QPDFObjectHandle Font; ///< the Type0 font (ISO 32000-1, 9.7.6)
    QPDFObjectHandle Descendant;
    QPDFObjectHandle Descriptor;
    QPDFObjectHandle Program;
    QPDFObjectHandle ToUnicode;
};

struct TEarlierFont {
    TFontObjects Objects;
    std::vector<TGlyphTexts::TGlyph> Glyphs;
};

/// The font with its glyphs if we would write it for this face byte by byte as it stands, so that it can be
/// used and added to like one of this run. It may be anything that a file holds.
[[nodiscard]] std::optional<TEarlierFont> ReadEarlierFont(const QPDFObjectHandle& font,
                                                          const TFontFace& face);
