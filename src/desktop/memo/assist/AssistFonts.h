#pragma once
// Fonts of the completion list and the hint, on the desktop.
#include "editor/style/MemoFont.h"

#include <QFont>

/// `bold` comes on top of the font's own style.
[[nodiscard]] QFont DesktopFont(const TMemoFont& font, bool bold);
