#include "desktop/memo/MemoFonts.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal Exact = 0.01; // advances are multiples of 1/64

QFont Styled(const QFont& font, TFontStyles style) {
    QFont styled = font;
    styled.setBold((style & fsBold) != 0);
    styled.setItalic((style & fsItalic) != 0);
    styled.setUnderline((style & fsUnderline) != 0);
    styled.setStrikeOut((style & fsStrikeOut) != 0);
    return styled;
}

} // namespace

void TMemoFonts::Set(const TMemoFont& font, int zoom) {
    constexpr int SmallestSize = 4;
    QFont plain(font.Name);
    plain.setStyleHint(QFont::Monospace);
    plain.setFixedPitch(/*enable=*/true);
    plain.setPointSize(std::max(SmallestSize, font.Size + zoom));
    plain.setKerning(/*enable=*/false);
    for (unsigned style = 0; style < Styles; ++style)
        FStyled[style] = Styled(plain, style | font.Style);
    MakeCell();
    FKnown.fill(Unknown);
}

/// Cells are whole pixels: letter spacing brings the advance of each style to the nearest one.
void TMemoFonts::MakeCell() {
    const QFontMetricsF metrics(FStyled[0]);
    FCell.W = std::max(1, int(std::lround(metrics.horizontalAdvance(u'0'))));
    const int height = int(std::ceil(metrics.ascent())) + int(std::ceil(metrics.descent()));
    const int air = std::max(2, height / 6);
    FCell.H = height + air;
    FAscent = int(std::ceil(metrics.ascent())) + air / 2;
    FFixed = true;
    for (QFont& font : FStyled) {
        font.setLetterSpacing(QFont::AbsoluteSpacing, FCell.W - QFontMetricsF(font).horizontalAdvance(u'0'));
        const QFontMetricsF spaced(font);
        // Pairs that some fonts join in one sign are among them.
        for (const char* sample : {"ii", "WW", "fi", "->", ".."})
            FFixed = FFixed && std::abs(spaced.horizontalAdvance(sample) - 2 * FCell.W) < Exact;
    }
}

bool TMemoFonts::CellHolds(QChar c) const {
    const QChar::Script script = c.script();
    const bool plainScript = script == QChar::Script_Common || script == QChar::Script_Latin ||
                             script == QChar::Script_Greek || script == QChar::Script_Cyrillic;
    const bool shows = c.category() < QChar::Other_Control || c.category() > QChar::Other_NotAssigned;
    if (!plainScript || !shows || c.isMark())
        return false;
    return std::all_of(FStyled.begin(), FStyled.begin() + 4, [this, c](const QFont& font) {
        const QFontMetricsF metrics(font);
        return metrics.inFont(c) && std::abs(metrics.horizontalAdvance(c) - FCell.W) < Exact;
    });
}

bool TMemoFonts::OnGrid(QStringView text) const {
    return FFixed && std::all_of(text.begin(), text.end(), [this](QChar c) {
               const char16_t code = c.unicode();
               if (code < 127)
                   return code >= 32;
               if (code >= GridEnd)
                   return false;
               if (FKnown[code] == Unknown)
                   FKnown[code] = CellHolds(c) ? On : Off;
               return FKnown[code] == On;
           });
}
