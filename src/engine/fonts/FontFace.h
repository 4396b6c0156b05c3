#pragma once
// A face of a font file as lines are shaped with it and documents embed it. Immutable and safe to share
// between threads.
#include "base/Text.h"

#include <memory>

struct hb_face_t;
struct hb_font_t;

/// Where a face is found and how it is drawn.
struct TFontSource {
    NarrowString File = {};
    int Index = 0; ///< as fontconfig counts: the face in its low half, a named instance in its high one
    NarrowString Variations = {}; ///< axes of a variable font, as "wght=700,wdth=75"
    bool Slanted = false;         ///< an upright face stands in for an italic one

    bool operator==(const TFontSource&) const = default;
};

class TFontFace {
public:
    /// The one face of a source. Null where the file can't be read, its outlines are none that PDF can hold,
    /// or its maker forbids embedding.
    [[nodiscard]] static std::shared_ptr<const TFontFace> Get(const TFontSource& source);

    explicit TFontFace(const TFontSource& source);
    ~TFontFace();
    Q_DISABLE_COPY(TFontFace)

    /// With a scale of UnitsPerEm().
    [[nodiscard]] hb_font_t* Font() const { return FFont; }
    [[nodiscard]] hb_face_t* Face() const { return FFace; }

    [[nodiscard]] Double UnitsPerEm() const { return FUnitsPerEm; }
    /// In units of 1/1000 em, as PDF counts.
    [[nodiscard]] Double Advance(quint32 glyph) const;
    /// The glyph that a character alone is shown by; 0 if there is none.
    [[nodiscard]] quint32 GlyphOf(char32_t character) const;
    [[nodiscard]] quint32 SpaceGlyph() const { return FSpaceGlyph; }
    /// That of the zero width non-joiner; 0 if there is none.
    [[nodiscard]] quint32 InvisibleGlyph() const { return FInvisibleGlyph; }

    /// In em, positive.
    [[nodiscard]] Double Ascent() const { return FAscent; }
    [[nodiscard]] Double Descent() const { return FDescent; }
    [[nodiscard]] Double LineHeight() const { return FLineHeight; }

    [[nodiscard]] bool IsCff() const { return FIsCff; }
    [[nodiscard]] bool IsSlanted() const { return FIsSlanted; }

private:
    [[nodiscard]] bool IsUsable() const;
    void Vary(const TFontSource& source);
    void ReadMetrics();

    hb_face_t* FFace = nullptr;
    hb_font_t* FFont = nullptr;
    Double FUnitsPerEm = 1000;
    Double FAscent = 0;
    Double FDescent = 0;
    Double FLineHeight = 0;
    quint32 FSpaceGlyph = 0;
    quint32 FInvisibleGlyph = 0;
    bool FIsCff = false;
    bool FIsSlanted = false;
};

/// How far an upright face leans where it stands in for an italic one: the tangent of 12 degrees.
inline constexpr Double SlantOfUpright = 0.2126;
