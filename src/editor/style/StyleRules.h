#pragma once
// The control's side of styling: which styler is in force, and what breaks words and makes URLs.
#include "editor/style/MemoStyler.h"
#include "editor/text/LineProp.h"

class TStyleRules {
public:
    virtual ~TStyleRules() = default;

    TAdvCustomMemoStyler* Styler = nullptr;
    bool FUseStyler = false;
    bool FCaseSensitive = false;
    bool FUrlAware = false;
    string FUrlDelimiters = " \"',";
    TCharStyle FUrlStyle{0xFF0000, clNone, fsUnderline}; ///< blue

    [[nodiscard]] bool InForce() const { return Styler != nullptr && FUseStyler; }
    [[nodiscard]] virtual bool IsWordBreakChar(QChar c) const;
    [[nodiscard]] virtual bool WordIsURL(QStringView word) const;
    /// The pieces of `line`, alternately without and with URL delimiters; the whole line unless FUrlAware.
    [[nodiscard]] std::vector<QStringView> SplitForUrls(QStringView line) const;
    /// The character that quotes the next one inside a bracket; NUL for none.
    [[nodiscard]] QChar Literal() const;
    [[nodiscard]] bool IsEscape(QChar c) const;

    /// What is derived from the styler for a scan: all symbols in the order of the elements, and what may
    /// begin and continue a number, in upper case. Empty when no styler is in force.
    struct TTables {
        string Delimiters;
        string NumberStart, Number, Hex;
    };
    [[nodiscard]] TTables Tables() const;
};

/// The look of a run.
struct TRunLook {
    TColor TextColor, BkColor;
    TFontStyles Style;
    bool operator==(const TRunLook&) const = default;
};

/// The colours of text in `state`, over the control's own look `base`.
[[nodiscard]] TRunLook LookOf(const TStyle& state, const TStyleRules& rules, const TRunLook& base);
