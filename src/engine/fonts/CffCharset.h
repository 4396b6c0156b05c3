#pragma once
// The character collections of CFF font programs (Adobe Technical Note 5176).
#include <QtGlobal>

#include <string>

/// A program of glyphs by CID says in its charset which CID a glyph has. Rewrites that, so that it is the
/// glyph's number, which text refers to. Leaves other programs, where it is so by rule, as they are.
void NumberCidsByGlyph(std::string& cff, quint32 glyphCount);
