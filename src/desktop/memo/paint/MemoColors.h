#pragma once
// The control's colours on the desktop's palette.
//
// Stylers, lists and hints are coloured for white paper. A light palette shows them as they are. On a dark
// one a colour keeps its hue and takes another lightness, so that text stands out from its background
// by 4.5:1 at least (WCAG 2, success criterion 1.4.3), and what was faint on white stays fainter than the
// rest.
#include "base/Text.h"
#include "editor/style/ElementStyle.h"

#include <QColor>
#include <QHash>
#include <QPalette>

/// Colours of what the window itself adds to the text.
struct TMemoTints {
    QColor Base, Ink;
    QColor CurrentLine, RightMargin, BreakPointLine;
    QColor Selection, SelectedText; ///< with the focus
    QColor SelectionAway;           ///< without it; text keeps its colours there
    QColor Bracket;
    QColor Match; ///< of a search
    QColor Error;
    QColor Gutter, Number, CurrentNumber, Fold;
    QColor Modified, Saved, Bookmark, BreakPoint, OnMark;
};

class TMemoColors {
public:
    static constexpr double LeastContrast = 4.5;

    explicit TMemoColors(const QPalette& palette);
    [[nodiscard]] bool IsFor(const QPalette& palette) const { return palette.cacheKey() == FKey; }
    [[nodiscard]] bool IsDark() const { return FDark; }

    /// A background. White is the control's own, and that is the palette's.
    [[nodiscard]] QColor Back(TColor color) const;
    /// Text on the background `on`, which is given as the control has it. Black is the palette's text.
    [[nodiscard]] QColor Text(TColor color, TColor on = clWhite) const;

    TMemoTints Tints;

private:
    [[nodiscard]] QColor System(TColor color) const;
    [[nodiscard]] QColor OnDark(TColor color, TColor on) const;

    QPalette FPalette;
    qint64 FKey;
    bool FDark;
    mutable QHash<quint64, QColor> FTexts; // by colour and background
};

/// How far two colours stand apart: from 1 to 21.
[[nodiscard]] double Contrast(const QColor& a, const QColor& b);
