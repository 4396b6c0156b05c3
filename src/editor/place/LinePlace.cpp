#include "editor/place/LinePlace.h"

#include "editor/place/MemoState.h"

#include <QRegularExpression>

#include <algorithm>

std::optional<TLinePlace> ReadPlace(const string& text) {
    static const QRegularExpression Form(R"(^\s*([0-9]{1,9})\s*(?:[:,]\s*([0-9]{1,9})?\s*)?$)");
    const QRegularExpressionMatch match = Form.match(text);
    if (!match.hasMatch())
        return {};
    const auto number = [](const string& digits) { return std::max(1, digits.toInt()); };
    return TLinePlace{number(match.captured(1)), number(match.captured(2))};
}

TLinePlace PlaceOfCaret(const TMemoState& memo) {
    int row = memo.Caret().Y();
    TLinePlace place{row + 1, memo.Caret().X() + 1};
    while (memo.IsContinuation(row))
        place.Column += memo.LineLength(--row);
    if (memo.Settings.FWordWrap == wwNone)
        return place;
    place.Line = 1;
    for (int above = 1; above <= row; ++above)
        place.Line += memo.IsContinuation(above) ? 0 : 1;
    return place;
}

void GoToPlace(TMemoState& memo, const TLinePlace& place) {
    int row = 0; // where the line begins
    int line = 1;
    for (int next = 1; next < memo.Lines().Count() && line < place.Line; ++next) {
        if (memo.IsContinuation(next))
            continue;
        row = next;
        ++line;
    }
    int x = place.Column - 1;
    while (memo.IsContinuation(row + 1) && x >= memo.LineLength(row))
        x -= memo.LineLength(row++);
    memo.Folding().Reveal(row);
    memo.Caret().MoveTo(std::clamp(x, 0, memo.LineLength(row)), row);
    memo.ClearSelection();
}
