#pragma once
// What a font file gives to a document: a small program of the glyphs used, and facts for its descriptor.
#include "engine/fonts/FontFace.h"

#include <array>
#include <string>
#include <vector>

struct TFontSubset {
    std::string Program;
    std::vector<quint32> Glyphs; ///< all that it holds, sorted: those asked for, and what they are made of
};

/// A TrueType file, or the bare CFF table of a face with such outlines, with the outlines of these glyphs
/// under their numbers in the face or, in a table that has CIDs, under these as CIDs; without hinting and
/// with the tables only that PDF needs (ISO 32000-1, table 126). Raises Exception where the face is damaged.
[[nodiscard]] TFontSubset SubsetProgram(const TFontFace& face, const std::vector<quint32>& glyphs);

/// Lengths in 1/1000 em.
struct TFontFacts {
    std::string PostScriptName; ///< of characters that a PDF name shows as they are
    std::array<Double, 4> Box{};
    Double ItalicAngle = 0; ///< degrees against the clock
    Double CapHeight = 0;
    Double StemWidth = 0; ///< a guess from the weight: fonts don't say
    bool IsFixedPitch = false;
};
[[nodiscard]] TFontFacts FactsOf(const TFontFace& face);
