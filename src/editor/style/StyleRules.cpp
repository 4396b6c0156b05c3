#include "editor/style/StyleRules.h"

#include <algorithm>
#include <array>

bool TStyleRules::IsWordBreakChar(QChar c) const {
    static const string Always = " '\",;";
    return Always.contains(c) || (InForce() && Styler->FAllStyles.IsWordBoundary(c));
}

bool TStyleRules::WordIsURL(QStringView word) const {
    static constexpr std::array<QStringView, 7> Starts{u"http://", u"mailto:", u"www.",   u"https://",
                                                       u"ftp://",  u"nntp://", u"file://"};
    return std::any_of(Starts.begin(), Starts.end(),
                       [word](QStringView start) { return word.startsWith(start, Qt::CaseInsensitive); });
}

std::vector<QStringView> TStyleRules::SplitForUrls(QStringView line) const {
    if (!FUrlAware)
        return {line};
    std::vector<QStringView> pieces;
    const QChar literal = Literal();
    qsizetype start = 0;
    bool inDelimiters = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (!literal.isNull() && line[i] == literal) {
            ++i; // this character and the next stay in the run at hand
            continue;
        }
        const bool delimiter = FUrlDelimiters.contains(line[i]);
        if (delimiter != inDelimiters && i > start) {
            pieces.push_back(line.mid(start, i - start));
            start = i;
        }
        inDelimiters = delimiter;
    }
    if (start < line.size())
        pieces.push_back(line.mid(start));
    return pieces;
}

QChar TStyleRules::Literal() const {
    return InForce() && !Styler->FLiteral.isEmpty() ? Styler->FLiteral[0] : QChar();
}

bool TStyleRules::IsEscape(QChar c) const {
    return Styler != nullptr && Styler->FEscapeChar.size() == 1 && Styler->FEscapeChar[0] == c;
}

TStyleRules::TTables TStyleRules::Tables() const {
    TTables tables;
    if (!InForce())
        return tables;
    for (int i = 0; i < Styler->FAllStyles.Count(); ++i) {
        if (Styler->FAllStyles[i].StyleType() == stSymbol)
            tables.Delimiters += Styler->FAllStyles[i].Symbols();
    }
    tables.NumberStart = (Styler->FNumericChars + Styler->FHexIdentifier).toUpper();
    tables.Number = Styler->FNumericChars.toUpper() + "E";
    tables.Hex = Styler->FHexIdentifier.toUpper();
    return tables;
}

namespace {

TColor Over(TColor color, TColor base) {
    return color == clNone ? base : color;
}

TRunLook Of(const TCharStyle& style, const TRunLook& base) {
    return {style.TextColor, Over(style.BkColor, base.BkColor), style.Style};
}

} // namespace

TRunLook LookOf(const TStyle& state, const TStyleRules& rules, const TRunLook& base) {
    if (!rules.Styler)
        return state.isURL ? Of(rules.FUrlStyle, base) : base;
    const TElementStyles& elements = rules.Styler->FAllStyles;
    const auto element = [&]() -> TRunLook {
        if (state.index < 0 || state.index >= elements.Count())
            return base; // the elements changed since the scan
        const TElementStyle& style = elements[state.index];
        return {style.Font().Color, style.BGColor(), style.Font().Style};
    };
    if (state.isHighlight)
        return {rules.Styler->FHighlightStyle.TextColor, rules.Styler->FHighlightStyle.BkColor,
                rules.Styler->FHighlightStyle.Style};
    if (state.isComment && !state.isURL)
        return Of(rules.Styler->FCommentStyle, base);
    if (state.isBracket && !state.isURL)
        return element();
    TRunLook look = base;
    if (state.isnumber)
        look = Of(rules.Styler->FNumberStyle, base);
    if (state.isdelimiter || state.iskeyWord)
        look = element();
    return state.isURL ? Of(rules.FUrlStyle, base) : look;
}
