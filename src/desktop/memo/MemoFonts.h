#pragma once
// The editor's fonts by style, and the cells that they are brought to.
#include "editor/place/MemoView.h"
#include "editor/style/MemoFont.h"

#include <QFont>

#include <array>

class TMemoFonts {
public:
    TMemoFonts() { Set({}, 0); }
    /// `zoom` in points comes on top of the font's size.
    void Set(const TMemoFont& font, int zoom);

    [[nodiscard]] const QFont& Of(TFontStyles style) const { return FStyled[style % Styles]; }
    [[nodiscard]] const TCellSize& Cell() const { return FCell; }
    /// From the top of a cell to the base line.
    [[nodiscard]] int Ascent() const { return FAscent; }
    /// Every character takes just one cell, in every style.
    [[nodiscard]] bool OnGrid(QStringView text) const;

private:
    static constexpr size_t Styles = 16;
    static constexpr char16_t GridEnd = 0x2600; // behind it are symbols that are pictures in many fonts

    void MakeCell();
    [[nodiscard]] bool CellHolds(QChar c) const;

    std::array<QFont, Styles> FStyled; // by TFontStyles
    TCellSize FCell;
    int FAscent = 0;
    bool FFixed = false;
    enum TKnown : quint8 { Unknown, On, Off };
    mutable std::array<TKnown, GridEnd> FKnown{}; // by character
};
