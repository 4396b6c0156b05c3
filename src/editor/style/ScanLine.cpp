#include "editor/style/ScanLine.h"

#include "editor/style/Expressions.h"
#include "editor/style/MarkerFinder.h"

void TRunList::AddRun(QStringView text, TStyle& state) {
    if (FOpen && FRuns.back().State == state)
        FRuns.back().Text.append(text);
    else
        FRuns.push_back({text.toString(), state});
    FOpen = true;
    state.isnumber = state.iskeyWord = state.isdelimiter = state.isURL = state.isHighlight = false;
}

void TRunList::AddCustomDrawn(QStringView text, TStyle& state) {
    FOpen = false;
    AddRun(text, state);
    FRuns.back().CustomDraw = true;
    FOpen = false;
}

namespace {

/// Consumed text leaves the scanned text; what passes as plain or inside a bracket stays in it, before the
/// cursor, and searches for comment markers look at it again. That is on purpose: a marker inside a string
/// hides those behind the string. So the cursor's position counts passed text only.
class TLineScan {
public:
    TLineScan(QStringView text, TStyle& state, const TStyleRules& rules, TRunList& runs)
        : FText(text), FState(state), FRules(rules), FElements(rules.Styler->FAllStyles), FRuns(runs),
          FTables(rules.Tables()), FLiteral(rules.Literal()), FMulti(rules.Styler->HasMultiComment()),
          FExpressions(rules.Styler->FExpressions), FStarts(rules.Styler->CommentStarts()),
          FEnds(rules.Styler->CommentEnds()) {}

    bool Run() {
        while (!AtEnd() && Step() == TNext::Loop) {
        }
        return FLineComment;
    }

private:
    enum class TNext { On, Loop, End };

    [[nodiscard]] bool AtEnd() const { return FAt >= FText.size(); }
    [[nodiscard]] QChar Here() const { return FText[FAt]; }
    [[nodiscard]] qsizetype P() const { return FPassed.size() + 1; }
    [[nodiscard]] bool IsDelimiter(QChar c) const { return FTables.Delimiters.contains(c); }

    /// Gives `count` characters to a run and removes them.
    void Consume(qsizetype count) {
        FRuns.AddRun(FText.mid(FAt, count), FState);
        FAt += count;
        FHandled = true;
    }
    /// Gives one character to a run and leaves it behind the cursor.
    void Pass() {
        FPrev = Here();
        FRuns.AddRun(FText.mid(FAt, 1), FState);
        FPassed.append(FText[FAt++]);
    }
    /// Forgets the passed text along with what was removed.
    void Restart() {
        FPassed.clear();
        FStarts.Restart();
        FEnds.Restart();
    }

    TNext Step();
    TNext Comments();
    TNext InBracket(QChar c);
    TNext OpenBracket(QChar c);
    [[nodiscard]] bool Expression();
    void Symbol();
    void Number();
    [[nodiscard]] qsizetype NumberEnd();
    void KeyWord();

    QStringView FText;
    qsizetype FAt = 0;
    string FPassed;
    TStyle& FState;
    const TStyleRules& FRules;
    const TElementStyles& FElements;
    TRunList& FRuns;
    const TStyleRules::TTables FTables;
    const QChar FLiteral;
    const bool FMulti;
    const int FExpressions;
    TMarkerFinder FStarts, FEnds;
    bool FWordStart = true;
    bool FHandled = false;
    QChar FPrev;
    qsizetype FWordEnd = 0; // where the word at hand ends
    bool FLineComment = false;
};

TLineScan::TNext TLineScan::Step() {
    if (!FHandled)
        FWordStart = P() == 1 || Here() == u' ' || FTables.Delimiters.isEmpty() || IsDelimiter(Here());
    FHandled = false;
    if (FMulti && !FState.isBracket && Comments() == TNext::End)
        return TNext::End;
    if (!FHandled && !FState.isComment) {
        const string& marker = FRules.Styler->FLineComment;
        if (!FState.isBracket && !marker.isEmpty() && FText.mid(FAt).startsWith(marker)) {
            FState.isComment = FLineComment = true;
            Consume(FText.size() - FAt);
            return TNext::End;
        }
        const bool open = FState.isBracket && FState.StartBracket != 0;
        const TNext next = open ? InBracket(Here()) : FState.isBracket ? TNext::On : OpenBracket(Here());
        if (next != TNext::On)
            return next;
    }
    if (AtEnd())
        return TNext::End;
    if (!FHandled)
        Symbol();
    if (!FHandled && FWordStart)
        Number();
    if (!FHandled)
        KeyWord();
    if (!FHandled)
        Pass();
    return TNext::Loop;
}

TLineScan::TNext TLineScan::Comments() {
    int length = 0;
    if (FState.isComment) {
        const int end = FEnds.Find(FPassed, FText, FAt, length);
        if (end < 1) {
            Consume(FText.size() - FAt);
            return TNext::End;
        }
        Consume(end + length - 1 - FPassed.size());
        Restart();
        FState.isComment = false;
        if (AtEnd())
            return TNext::End;
    }
    if (FStarts.Find(FPassed, FText, FAt, length) == P()) {
        FState.isComment = true;
        Restart();
        Consume(length);
    }
    return AtEnd() ? TNext::End : TNext::On;
}

TLineScan::TNext TLineScan::InBracket(QChar c) {
    if (!FLiteral.isNull() && c == FLiteral) {
        Consume(1);
        if (AtEnd())
            return TNext::End;
        Consume(1);
        return AtEnd() ? TNext::End : TNext::Loop;
    }
    const bool closes = FState.EndBracket != 0 ? c == QChar(FState.EndBracket) : FRules.IsWordBreakChar(c);
    if (closes && !FRules.IsEscape(FPrev)) {
        Consume(1);
        FState.isBracket = false;
        return TNext::Loop;
    }
    Pass();
    FHandled = true;
    if (!AtEnd())
        return TNext::Loop;
    if (FState.EndBracket == u' ') {
        FState.isBracket = false;
        FState.StartBracket = FState.EndBracket = 0;
    }
    return TNext::End;
}

TLineScan::TNext TLineScan::OpenBracket(QChar c) {
    FState.StartBracket = FState.EndBracket = 0;
    for (int i = 0; i < FElements.Count() && !FState.isBracket; ++i) {
        const TElementStyle& element = FElements[i];
        if (element.StyleType() != stBracket)
            continue;
        FState.StartBracket = element.BracketStart().unicode();
        FState.EndBracket = element.BracketEnd().unicode();
        FState.index = i;
        FState.isBracket = FState.StartBracket != 0 && c == element.BracketStart() && !FRules.IsEscape(FPrev);
    }
    if (!FState.isBracket)
        return TNext::On;
    Consume(1);
    FHandled = false;
    return TNext::Loop;
}

/// A regular expression is one run.
bool TLineScan::Expression() {
    const qsizetype length = ExpressionLength(FText, FAt);
    if (length == 0)
        return false;
    FState.isBracket = true;
    FState.index = FExpressions;
    Consume(length);
    FState.isBracket = false;
    return true;
}

void TLineScan::Symbol() {
    if (!IsDelimiter(Here()))
        return;
    if (FExpressions >= 0 && Here() == u'/' && Expression())
        return;
    for (int i = 0; i < FElements.Count(); ++i) {
        if (FElements[i].StyleType() != stSymbol || !FElements[i].Symbols().contains(Here()))
            continue;
        FState.isdelimiter = true;
        FState.index = i;
        Consume(1);
        FWordStart = true;
        return;
    }
}

/// Where the number at the cursor ends: the offset behind its last character.
qsizetype TLineScan::NumberEnd() {
    string allowed = FTables.Number;
    const string& hex = FTables.Hex;
    qsizetype end = FAt;
    if (!hex.isEmpty() && FText.mid(FAt).startsWith(hex, Qt::CaseInsensitive)) {
        allowed += "ABCDEF";
        end += hex.size();
    }
    bool dotSeen = false;
    qsizetype dotAt = FAt;
    for (; end < FText.size() && allowed.contains(FText[end].toUpper()); ++end) {
        if (FText[end] != u'.')
            continue;
        if (dotSeen)
            return dotAt;
        dotSeen = true;
        dotAt = end;
    }
    return end;
}

void TLineScan::Number() {
    const QChar c = Here();
    const QChar upper = c >= u'a' && c <= u'z' ? c.toUpper() : c;
    if (!FTables.NumberStart.contains(upper))
        return;
    const qsizetype end = NumberEnd();
    if (end <= FAt)
        return;
    FState.isnumber = true;
    FState.isdelimiter = FState.iskeyWord = FState.isComment = false;
    Consume(end - FAt);
}

void TLineScan::KeyWord() {
    FPrev = Here();
    if (!FWordStart)
        return;
    if (FWordEnd <= FAt) {
        FWordEnd = FAt + 1;
        const auto goesOn = [this](QChar c) {
            return c != u' ' && c != u';' && c != u':' && !IsDelimiter(c);
        };
        while (FWordEnd < FText.size() && goesOn(FText[FWordEnd]))
            ++FWordEnd;
    }
    const QStringView word = FText.mid(FAt, FWordEnd - FAt);
    const string lookup = QString::fromRawData(word.data(), word.size()); // most words are none: not copied
    const auto sensitivity = FRules.FCaseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive;
    for (int i = 0; i < FElements.Count(); ++i) {
        const TElementStyle& element = FElements[i];
        if (element.StyleType() != stKeyword || word.size() > element.LongestKeyWord() ||
            !element.HoldsKeyWord(lookup, sensitivity))
            continue;
        FState.iskeyWord = true;
        FState.index = i;
        if (FRules.Styler->FCustomDraw)
            FRuns.AddCustomDrawn(word, FState);
        else
            FRuns.AddRun(word, FState);
        FAt = FWordEnd;
        FHandled = true;
        return;
    }
}

} // namespace

bool ScanLine(QStringView text, TStyle& state, const TStyleRules& rules, TRunList& runs) {
    if (!text.isEmpty() && (!rules.InForce() || (state.isURL && rules.FUrlAware) || state.isHighlight)) {
        runs.AddRun(text, state);
        return false;
    }
    return !text.isEmpty() && TLineScan(text, state, rules, runs).Run();
}

std::vector<TStyleRun> RunsOfLine(QStringView line, TStyle state, const TStyleRules& rules) {
    TRunList runs;
    bool lineComment = false;
    for (const QStringView piece : rules.SplitForUrls(line)) {
        state.isURL = rules.FUrlAware && rules.WordIsURL(piece);
        if (lineComment)
            runs.AddRun(piece, state);
        else
            lineComment = ScanLine(piece, state, rules, runs);
    }
    return runs.Take();
}
