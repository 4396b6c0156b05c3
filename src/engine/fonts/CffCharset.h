#pragma once
// The character collections of CFF font programs (Adobe Technical Note 5176).
#include <QtGlobal>

#include <string>
#include <string_view>
#include <vector>

/// Whether the glyphs of a program have CIDs, by which text then refers to them. Those of other programs are
/// referred to by number (ISO 32000-1, 9.7.4.2).
[[nodiscard]] bool HasCids(std::string_view cff);

/// Gives each glyph of such a program its CID; that of the first is always 0 and stands here for order's
/// sake. False if the program is damaged.
[[nodiscard]] bool SetCids(std::string& cff, const std::vector<quint32>& cids);
