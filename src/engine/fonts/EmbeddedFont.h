#pragma once
// One face in one document: its objects, which text refers to from the start and which are filled when the
// glyphs are known.
#include "engine/fonts/EarlierFont.h"

class TEmbeddedFont {
public:
    TEmbeddedFont(QPDF& pdf, std::shared_ptr<const TFontFace> face);
    /// Goes on with a font of an earlier run.
    TEmbeddedFont(QPDF& pdf, std::shared_ptr<const TFontFace> face, const TEarlierFont& earlier);

    [[nodiscard]] const TFontFace& Face() const { return *FFace; }
    [[nodiscard]] TGlyphTexts& Glyphs() { return FGlyphs; }
    /// The Type0 font (ISO 32000-1, 9.7.6).
    [[nodiscard]] const QPDFObjectHandle& Font() const { return FObjects.Font; }

    /// Writes what the glyphs used by now ask for.
    void Fill();

private:
    void MakeObjects();
    void FillDescriptor(const std::string& tag);
    void FillWidths(const std::vector<TGlyphTexts::TGlyph>& glyphs);
    void FillCidSet(const std::vector<quint32>& glyphs);

    QPDF& FPdf;
    std::shared_ptr<const TFontFace> FFace;
    TGlyphTexts FGlyphs;
    size_t FFilledGlyphs = 0; ///< what was last written
    std::string FFilledMap;
    TFontObjects FObjects;
};
