// The replacing side of TTextSearch.
#include "editor/edit/MemoEditor.h"
#include "editor/edit/TextSearch.h"

#include <algorithm>

namespace {

/// The number of a group, of one digit or two. A `length` of 0: there is no such group.
int GroupAt(QStringView text, int groups, qsizetype& length) {
    length = 0;
    int group = 0;
    while (length < std::min<qsizetype>(2, text.size()) && text[length] >= u'0' && text[length] <= u'9') {
        const int longer = group * 10 + text[length].digitValue();
        if (length > 0 && longer > groups)
            break;
        group = longer;
        ++length;
    }
    if (group > groups)
        length = 0;
    return group;
}

} // namespace

string TTextSearch::Expanded(const string& by, const QRegularExpressionMatch& match) const {
    if (!FQuery.Expression)
        return by;
    string text;
    for (qsizetype i = 0; i < by.size(); ++i) {
        const QStringView rest = QStringView(by).mid(i + 1);
        const bool marks = (by[i] == u'\\' || by[i] == u'$') && !rest.isEmpty();
        qsizetype digits = 0;
        const int group = marks ? GroupAt(rest, FPattern.captureCount(), digits) : 0;
        if (digits > 0)
            text += match.captured(group);
        else if (marks && rest[0] == by[i])
            text += by[i];
        else if (marks && by[i] == u'\\' && (rest[0] == u'n' || rest[0] == u't'))
            text += rest[0] == u'n' ? u'\n' : u'\t';
        else
            digits = -1;
        if (digits < 0)
            text += by[i];
        else
            i += std::max<qsizetype>(1, digits);
    }
    return text;
}

/// What `match` becomes in the text.
string TTextSearch::Replacement(const string& by, const QRegularExpressionMatch& match) const {
    return TabsToBlanks(Expanded(by, match), FMemo.Settings.FTabSize);
}

/// From the start of the line of `match` to its end: wrapping doesn't move the start of a line.
TSelectionRange TTextSearch::RangeFromLineStart(const TTextMatch& match) const {
    TSelectionRange range;
    FText.PlaceOf(match.From, range.StartX, range.StartY);
    FText.PlaceOf(match.End(), range.EndX, range.EndY);
    while (FMemo.IsContinuation(range.StartY))
        --range.StartY;
    range.StartX = 0;
    return range;
}

bool TTextSearch::MayReplace() const {
    return !FMemo.Settings.FReadOnly && FMemo.EditingAllowed();
}

TFound TTextSearch::Replace(const string& by) {
    if (!Update())
        return TFound::No;
    const TTextMatch selected = Selected();
    const QRegularExpressionMatch match = MatchAt(selected.From);
    if (MayReplace() && match.hasMatch() && Range(match) == selected) {
        const TSelectionRange range = RangeFromLineStart(selected);
        const int start = FText.RowStart(range.StartY);
        const string text = FText.Text().mid(start, selected.From - start) + Replacement(by, match);
        const int end = start + int(text.size());
        FMemo.Blocks().ReplaceRange(range, text, end, end);
    }
    return FindNext();
}

int TTextSearch::ReplaceAll(const string& by) {
    if (!Update() || !MayReplace())
        return 0;
    const int caret = FText.OffsetOf(FMemo.Caret().X(), FMemo.Caret().Y());
    int newCaret = caret;
    int count = 0;
    TTextMatch stretch; // from the first line with a match to the end of the last match
    string text;        // what it becomes
    auto all = MatchesFrom(0);
    for (; all.hasNext(); ++count) {
        const QRegularExpressionMatch match = all.next();
        const TTextMatch place = Range(match);
        if (count == 0)
            stretch.From = FText.RowStart(RangeFromLineStart(place).StartY);
        text += QStringView(FText.Text()).mid(stretch.End(), place.From - stretch.End());
        const string replacement = Replacement(by, match);
        text += replacement;
        stretch.Length = place.End() - stretch.From;
        // A caret behind a match moves along; one inside stays where it is as far as there is text.
        const int inside = std::clamp(caret - place.From, 0, place.Length);
        if (place.From < caret)
            newCaret += (inside == place.Length ? int(replacement.size())
                                                : std::min(inside, int(replacement.size()))) -
                        inside;
    }
    if (!IsThrough(all, stretch.End())) {
        FailForWork();
        return 0;
    }
    if (count > 0 && text != QStringView(FText.Text()).mid(stretch.From, stretch.Length))
        FMemo.Blocks().ReplaceRange(RangeFromLineStart(stretch), text, newCaret, newCaret);
    return count;
}
