#include "editor/style/LineStartState.h"

#include "editor/style/Expressions.h"
#include "editor/style/MarkerFinder.h"

#include <algorithm>

namespace {

constexpr int CheckpointEvery = 20;

TStyle Clear() {
    TStyle state;
    state.index = -1;
    return state;
}

/// Walks a piece of a line for what crosses lines: comments and brackets.
class TStateWalk {
public:
    TStateWalk(QStringView text, TStyle& state, const TStyleRules& rules)
        : FText(text), FState(state), FRules(rules), FStarts(rules.Styler->CommentStarts()),
          FEnds(rules.Styler->CommentEnds()) {}

    /// True when a line comment was seen.
    bool Run() {
        while (!Empty()) {
            if (SkipExpression())
                continue;
            if (!FState.isComment && !FState.isBracket)
                FState.isComment = Cut(FStarts);
            if (FState.isComment && !FState.isBracket)
                FState.isComment = !Cut(FEnds);
            if (!FState.isComment && !FState.isBracket && AtLineComment())
                return true;
            if (!FState.isComment)
                Brackets();
            if (!Empty())
                FPrev = FText[FAt++];
        }
        return false;
    }

private:
    [[nodiscard]] bool Empty() const { return FAt >= FText.size(); }
    [[nodiscard]] bool Starts(char16_t c) const { return !Empty() && c != 0 && FText[FAt] == QChar(c); }
    [[nodiscard]] bool AtLineComment() const {
        const string& marker = FRules.Styler->FLineComment;
        return !marker.isEmpty() && FText.mid(FAt).startsWith(marker);
    }
    bool Cut(TMarkerFinder& markers) {
        int length = 0;
        if (markers.Find({}, FText, FAt, length) != 1)
            return false;
        FAt += length;
        return true;
    }
    bool SkipExpression() {
        if (FState.isComment || FState.isBracket || FRules.Styler->FExpressions < 0 || FText[FAt] != u'/')
            return false;
        const qsizetype length = ExpressionLength(FText, FAt);
        FAt += length;
        return length > 0;
    }
    void Brackets();
    [[nodiscard]] bool FlipsBracket();

    QStringView FText;
    qsizetype FAt = 0;
    TStyle& FState;
    const TStyleRules& FRules;
    TMarkerFinder FStarts, FEnds;
    QChar FPrev;
};

/// Applies the character at hand to the element in the state; true ends the walk over the elements.
bool TStateWalk::FlipsBracket() {
    if (FState.EndBracket != 0) {
        if (!Starts(FState.StartBracket) && !Starts(FState.EndBracket))
            return false;
        FState.isBracket = !FState.isBracket;
        return true;
    }
    if (FState.isBracket && FRules.IsWordBreakChar(FText[FAt]))
        FState.isBracket = false;
    if (Starts(FState.StartBracket))
        FState.isBracket = true;
    return false;
}

void TStateWalk::Brackets() {
    const TElementStyles& elements = FRules.Styler->FAllStyles;
    const QChar literal = FRules.Literal();
    for (int i = 0; i < elements.Count(); ++i) {
        const TElementStyle& element = elements[i];
        if (element.StyleType() != stBracket || element.BracketStart().isNull())
            continue;
        if (!FState.isBracket) {
            FState.StartBracket = element.BracketStart().unicode();
            FState.EndBracket = element.BracketEnd().unicode();
            FState.index = i;
        }
        if (FState.isBracket && !literal.isNull() && Starts(literal.unicode()))
            FAt = std::min(FAt + 2, FText.size());
        if (!Empty() && !FRules.IsEscape(FPrev) && FlipsBracket())
            return;
    }
}

void WalkLine(QStringView line, TStyle& state, const TStyleRules& rules) {
    for (const QStringView piece : rules.SplitForUrls(line)) {
        if (rules.FUrlAware && rules.WordIsURL(piece))
            continue;
        if (TStateWalk(piece, state, rules).Run())
            break;
    }
    const TAdvCustomMemoStyler& styler = *rules.Styler;
    const bool ends = styler.FBracketsEndWithLine && QChar(state.EndBracket) != styler.FLongBracket;
    if (state.isBracket && (ends || state.EndBracket == u' '))
        state.isBracket = false; // such a bracket ends with its line
}

} // namespace

TStyle TLineStates::LineStartState(int line, TAdvMemoStrings& lines, const TStyleRules& rules) {
    TStyle state = Clear();
    if (!rules.InForce() || lines.Count() == 0)
        return state;
    line = std::min(line, lines.Count());
    int start = 0;
    for (int row = std::min(line, FValid) - 1; row >= 0; --row) {
        const TLineProp* prop = lines.GetLineProp(row);
        if (!prop || !prop->CachedStyle)
            continue;
        state = prop->Style;
        start = row;
        break;
    }
    const bool multi = rules.Styler->HasMultiComment();
    const auto keep = [&lines](int row, const TStyle& value) {
        TLineProp& prop = lines.NeedLineProp(row);
        prop.Style = value;
        prop.CachedStyle = true;
    };
    for (int row = start; row < line; ++row) {
        TLineProp* prop = lines.GetLineProp(row);
        if (prop && row >= FValid)
            prop->CachedStyle = false;
        if (lines[row].isEmpty())
            continue;
        const TStyle before = state;
        if (multi)
            WalkLine(lines[row], state, rules);
        if (row % CheckpointEvery == 0 && !(prop && prop->CachedStyle))
            keep(row, before);
    }
    if (line < lines.Count())
        keep(line, state);
    FValid = std::max(FValid, line < lines.Count() ? line + 1 : line);
    return state;
}
