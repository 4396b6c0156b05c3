#include "desktop/memo/assist/AssistFonts.h"

QFont DesktopFont(const TMemoFont& font, bool bold) {
    QFont desktop(font.Name);
    desktop.setStyleHint(QFont::Monospace);
    desktop.setPointSize(font.Size);
    desktop.setBold(bold || (font.Style & fsBold) != 0);
    desktop.setItalic((font.Style & fsItalic) != 0);
    desktop.setUnderline((font.Style & fsUnderline) != 0);
    desktop.setStrikeOut((font.Style & fsStrikeOut) != 0);
    return desktop;
}
