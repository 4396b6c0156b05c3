#include "editor/edit/TextSearch.h"

#include "editor/edit/MemoEditor.h"

#include <QElapsedTimer>

#include <algorithm>

namespace {

constexpr auto Unchecked = QRegularExpression::DontCheckSubjectStringMatchOption;

/// Lone halves of surrogate pairs, which no expression can be matched against, become U+FFFD.
string Matchable(const string& text) {
    if (text.isValidUtf16())
        return text;
    string subject = text;
    for (qsizetype i = 0; i < subject.size(); ++i) {
        const bool pair =
            subject[i].isHighSurrogate() && i + 1 < subject.size() && subject[i + 1].isLowSurrogate();
        if (pair)
            ++i;
        else if (subject[i].isSurrogate())
            subject[i] = QChar::ReplacementCharacter;
    }
    return subject;
}

} // namespace

void TTextSearch::SetQuery(const TSearchQuery& query) {
    if (query == FQuery)
        return;
    FQuery = query;
    FFresh = false;
    FError.clear();
    FErrorColumn = 0;
    QRegularExpression::PatternOptions options =
        QRegularExpression::MultilineOption | QRegularExpression::UseUnicodePropertiesOption;
    if (!query.MatchCase)
        options |= QRegularExpression::CaseInsensitiveOption;
    const string pattern = query.Expression ? query.Text : QRegularExpression::escape(query.Text);
    FPattern = QRegularExpression(pattern, options);
    if (FPattern.isValid() && query.WholeWords)
        FPattern.setPattern("(?<!\\w)(?:" + pattern + ")(?!\\w)");
    if (!FPattern.isValid())
        Fail(FPattern.errorString(), int(FPattern.patternErrorOffset()) + 1);
}

void TTextSearch::Fail(const string& text, int column) {
    FError = text;
    FErrorColumn = column;
}

void TTextSearch::FailForWork() {
    Fail("The expression takes too much work to match", 0);
}

TTextMatch TTextSearch::Range(const QRegularExpressionMatch& match) {
    return {int(match.capturedStart()), int(match.capturedLength())};
}

/// False where there is nothing to search for.
bool TTextSearch::Update() {
    if (FText.Update(FMemo.Lines())) {
        FFresh = false;
        FSubject = Matchable(FText.Text());
    }
    return !FQuery.Text.isEmpty() && FPattern.isValid();
}

QRegularExpressionMatchIterator TTextSearch::MatchesFrom(int offset) const {
    return FPattern.globalMatch(FSubject, offset, QRegularExpression::NormalMatch, Unchecked);
}

/// The first match from `offset` on, which isn't behind the end.
QRegularExpressionMatch TTextSearch::MatchAt(int offset) {
    const bool inPair = offset > 0 && offset < FSubject.size() && FSubject[offset].isLowSurrogate();
    offset += inPair ? 1 : 0;
    QRegularExpressionMatch match =
        FPattern.match(FSubject, offset, QRegularExpression::NormalMatch, Unchecked);
    if (!match.isValid())
        FailForWork();
    return match;
}

/// Matching came to the end of the text, not to its limits. Behind an empty match at the very end the
/// iterator isn't valid either.
bool TTextSearch::IsThrough(const QRegularExpressionMatchIterator& all, int end) const {
    return all.isValid() || end == FSubject.size();
}

void TTextSearch::FindMatches() {
    if (std::exchange(FFresh, true))
        return;
    FMatches.clear();
    FWhole = false;
    Fail({}, 0);
    QElapsedTimer timer;
    timer.start();
    auto all = MatchesFrom(0);
    while (all.hasNext()) {
        if (int(FMatches.size()) == MostCounted || timer.elapsed() > MostTime)
            return;
        FMatches.push_back(Range(all.next()));
    }
    FWhole = IsThrough(all, FMatches.empty() ? 0 : FMatches.back().End());
    if (!FWhole)
        FailForWork();
}

/// The first match that begins at or behind `offset`.
bool TTextSearch::FirstFrom(int offset, TTextMatch& match) {
    FindMatches();
    const auto at =
        std::find_if(FMatches.begin(), FMatches.end(), [offset](const auto& m) { return m.From >= offset; });
    if (at != FMatches.end()) {
        match = *at;
        return true;
    }
    if (FWhole || offset > FSubject.size())
        return false;
    const QRegularExpressionMatch found = MatchAt(offset);
    match = Range(found);
    return found.hasMatch();
}

/// The last match that begins before `offset`. Beyond what is listed it is looked for in stretches that grow
/// towards the start.
bool TTextSearch::LastBefore(int offset, TTextMatch& match) {
    FindMatches();
    if (FWhole || (!FMatches.empty() && FMatches.back().From >= offset)) {
        const auto at = std::find_if(FMatches.rbegin(), FMatches.rend(),
                                     [offset](const auto& m) { return m.From < offset; });
        match = at == FMatches.rend() ? TTextMatch() : *at;
        return at != FMatches.rend();
    }
    bool found = false;
    for (int stretch = 4096; !found; stretch *= 8) {
        const int from = offset > stretch ? int(FSubject.lastIndexOf(u'\n', offset - stretch)) + 1 : 0;
        auto all = MatchesFrom(from);
        while (all.hasNext()) {
            const TTextMatch next = Range(all.next());
            if (next.From >= offset)
                break;
            match = next;
            found = true;
        }
        if (from == 0)
            break;
    }
    return found;
}

/// The selection, or an empty match at the caret.
TTextMatch TTextSearch::Selected() const {
    const TSelectionRange range = FMemo.Selection().Ordered();
    if (FMemo.Selection().IsEmpty())
        return {FText.OffsetOf(FMemo.Caret().X(), FMemo.Caret().Y()), 0};
    const int from = FText.OffsetOf(range.StartX, range.StartY);
    return {from, FText.OffsetOf(range.EndX, range.EndY) - from};
}

void TTextSearch::Select(const TTextMatch& match) {
    TSelectionRange range;
    FText.PlaceOf(match.From, range.StartX, range.StartY);
    FText.PlaceOf(match.End(), range.EndX, range.EndY);
    FMemo.Folding().Reveal(range.StartY);
    FMemo.Folding().Reveal(range.EndY);
    FMemo.Caret().MoveTo(range.StartX, range.StartY); // its start comes into view where that is possible
    FMemo.Caret().MoveTo(range.EndX, range.EndY);
    FMemo.Selection().Take(range, /*block=*/false);
}

TFound TTextSearch::FindNext() {
    if (!Update())
        return TFound::No;
    const TTextMatch selected = Selected();
    TTextMatch match;
    bool found = FirstFrom(selected.End(), match);
    if (found && match == selected) // an empty match, where the search stands already
        found = FirstFrom(selected.End() + 1, match);
    const bool wraps = !found && FQuery.WrapAround && FirstFrom(0, match);
    if (found || wraps)
        Select(match);
    return found ? TFound::Yes : wraps ? TFound::Wrapped : TFound::No;
}

TFound TTextSearch::FindPrevious() {
    if (!Update())
        return TFound::No;
    TTextMatch match;
    const bool found = LastBefore(Selected().From, match);
    const bool wraps = !found && FQuery.WrapAround && LastBefore(int(FSubject.size()) + 1, match);
    if (found || wraps)
        Select(match);
    return found ? TFound::Yes : wraps ? TFound::Wrapped : TFound::No;
}

TFound TTextSearch::FindFrom(int offset) {
    if (!Update())
        return TFound::No;
    TTextMatch match;
    const bool found = FirstFrom(offset, match);
    const bool wraps = !found && FQuery.WrapAround && FirstFrom(0, match);
    if (found || wraps)
        Select(match);
    return found ? TFound::Yes : wraps ? TFound::Wrapped : TFound::No;
}

int TTextSearch::Anchor() {
    (void)Update();
    return Selected().From;
}

TMatchCount TTextSearch::Count() {
    if (!Update())
        return {};
    FindMatches();
    const auto at = std::find(FMatches.begin(), FMatches.end(), Selected());
    const int current = at == FMatches.end() ? 0 : int(at - FMatches.begin()) + 1;
    return {int(FMatches.size()), !FWhole, current};
}

/// For rows behind those that are listed; what goes on from another row doesn't show there.
std::vector<TColumnRange> TTextSearch::ColumnsOfRowAlone(int row) const {
    std::vector<TColumnRange> columns;
    auto all = FPattern.globalMatch(Matchable(FMemo.LineText(row)));
    while (all.hasNext()) {
        const TTextMatch match = Range(all.next());
        if (match.Length > 0)
            columns.push_back({match.From, match.End()});
    }
    return columns;
}

std::vector<TColumnRange> TTextSearch::ColumnsOf(int row) {
    std::vector<TColumnRange> columns;
    if (!Update())
        return columns;
    FindMatches();
    const int start = FText.RowStart(row);
    const int length = FMemo.LineLength(row);
    if (int(FMatches.size()) == MostCounted && FMatches.back().End() <= start)
        return ColumnsOfRowAlone(row);
    // They lie one behind the other: those that end at or before the row's start come first.
    auto at = std::partition_point(FMatches.begin(), FMatches.end(),
                                   [start](const auto& match) { return match.End() <= start; });
    for (; at != FMatches.end() && at->From < start + length; ++at) {
        if (at->Length > 0)
            columns.push_back({std::max(0, at->From - start), std::min(length, at->End() - start)});
    }
    return columns;
}
