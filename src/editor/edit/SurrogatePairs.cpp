#include "editor/edit/SurrogatePairs.h"

#include "editor/edit/MemoHistory.h"
#include "editor/text/Characters.h"

#include <algorithm>

namespace {

bool MovesCaret(int key) {
    return key >= keyHome && key <= keyPageDown;
}

/// Whether some row's pair is cut by a line down at `column`.
bool CutsPair(const TMemoEditor& memo, int from, int to, int column) {
    for (int row = from; row <= to; ++row)
        if (WholeColumn(memo.LineText(row), column) != column)
            return true;
    return false;
}

} // namespace

void TSurrogatePairs::Send(int key, TShiftState shift, char16_t character) {
    FMemo.KeyDown(key, shift);
    if (character != 0)
        FMemo.KeyPress(character);
}

void TSurrogatePairs::Key(int key, TShiftState shift, char16_t character) {
    const bool ctrl = Held(shift, ssCtrl);
    if (!MovesCaret(key))
        WidenSelection();
    if ((key == keyLeft || key == keyRight) && !ctrl)
        Step(key, shift);
    else if (ctrl && !Held(shift, ssAlt) && key == keyZ)
        InHistory(FMemo, THistoryStep::Undo, [&] { Send(key, shift, character); });
    else if (ctrl && key == keyY)
        InHistory(FMemo, THistoryStep::Redo, [&] { Send(key, shift, character); });
    else if (key == keyBackspace && Held(shift, ssAlt))
        InHistory(FMemo, Held(shift, ssShift) ? THistoryStep::Redo : THistoryStep::Undo,
                  [&] { FMemo.KeyDown(key, shift); });
    else if (key == keyBackspace || key == keyDelete)
        Erase(key, shift, character);
    else
        Send(key, shift, character);
    Snap();
}

void TSurrogatePairs::Execute(int key) {
    FMemo.Activate();
    WidenSelection();
    FMemo.ExecuteKey(key, 0);
    Snap();
}

void TSurrogatePairs::DeleteSelection() {
    FMemo.Activate();
    WidenSelection();
    FMemo.Blocks().DeleteSelection();
}

/// The key again until the caret is out of what it must not stand in.
void TSurrogatePairs::Step(int key, TShiftState shift) {
    const TMemoCaret& caret = FMemo.Caret();
    constexpr int Most = 64;
    int steps = 0;
    do
        FMemo.KeyDown(key, shift);
    while (++steps < Most && !IsCaretStop(FMemo.LineText(caret.Y()), caret.X()));
}

void TSurrogatePairs::Erase(int key, TShiftState shift, char16_t character) {
    const int row = FMemo.Caret().Y();
    const bool whole = IsWholeAround(row);
    const string line = FMemo.LineText(row);
    const int x = FMemo.Caret().X();
    Send(key, shift, character);
    if (key == keyDelete && FMemo.Selection().IsEmpty() && FMemo.Caret().IsAt(x, row) &&
        FMemo.LineText(row) == string(line).remove(x, 1))
        for (int rest = CharacterEnd(line, x) - x - 1; rest > 0; --rest)
            FMemo.Editing().DeleteChar(-1, -1);
    if (whole)
        DeleteRestOfPairs();
}

/// What stands beside the caret, across the cuts of a wrapped line; null at a line's end.
QChar TSurrogatePairs::UnitBeforeCaret() const {
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    const string line = FMemo.LineText(x == 0 && FMemo.IsContinuation(y) ? y - 1 : y).left(x > 0 ? x : -1);
    return (x > 0 || FMemo.IsContinuation(y)) && !line.isEmpty() ? line.back() : QChar();
}

QChar TSurrogatePairs::UnitAfterCaret() const {
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    const string line = FMemo.LineText(y);
    if (x < line.size())
        return line[x];
    return FMemo.IsContinuation(y + 1) && FMemo.LineLength(y + 1) > 0 ? FMemo.LineText(y + 1)[0] : QChar();
}

bool TSurrogatePairs::IsWholeAround(int row) const {
    return FMemo.LineText(row - 1).isValidUtf16() && FMemo.LineText(row).isValidUtf16() &&
           FMemo.LineText(row + 1).isValidUtf16();
}

/// The half that a deletion has left joins it in the history: its undo entries meet.
void TSurrogatePairs::DeleteRestOfPairs() {
    if (UnitAfterCaret().isLowSurrogate() && !UnitBeforeCaret().isHighSurrogate())
        FMemo.Editing().DeleteChar(-1, -1);
    if (!UnitBeforeCaret().isHighSurrogate() || UnitAfterCaret().isLowSurrogate())
        return;
    if (FMemo.Assist().IsOpen())
        FMemo.KeyPress(QChar(keyBackspaceChar)); // the list narrows its entries afresh
    else
        FMemo.Editing().BackSpace();
}

void TSurrogatePairs::Type(QStringView text) {
    for (qsizetype i = 0; i < text.size();) {
        const bool pair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const bool crlf = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        const qsizetype units = pair || crlf ? 2 : 1;
        if (text[i] == u'\r' || text[i] == u'\n')
            Key(keyReturn, 0, keyEnterChar);
        else if (text[i] == u'\t')
            Key(keyTab, 0, keyTabChar);
        else if (pair || (!text[i].isSurrogate() && text[i].unicode() >= 32))
            TypeCharacter(text.mid(i, units));
        i += units;
    }
    Snap();
}

void TSurrogatePairs::TypeCharacter(QStringView character) {
    WidenSelection();
    // What stands behind a selection is known once that is gone.
    const TMemoSettings& settings = FMemo.Settings;
    if ((settings.FOverwrite || settings.FWordWrap != wwNone) && settings.FDelErase && !settings.FReadOnly &&
        FMemo.EditingAllowed() && !FMemo.Selection().IsEmpty()) {
        FMemo.Blocks().DeleteSelection();
        Snap();
    }
    TSelectionRange replaced;
    if (CutsInOverwriting(character, replaced))
        Replace(replaced, character);
    else
        (void)Press(character);
}

/// Overwriting goes unit by unit. Where the old character or the new one has two, the old one is deleted and
/// the new one inserted.
bool TSurrogatePairs::CutsInOverwriting(QStringView character, TSelectionRange& replaced) const {
    const TMemoCaret& caret = FMemo.Caret();
    replaced = {caret.X(), caret.Y(), caret.X(), caret.Y()};
    if (!FMemo.Settings.FOverwrite)
        return false;
    replaced.EndX = CharacterEnd(FMemo.LineText(caret.Y()), caret.X());
    return character.size() > 1 || replaced.EndX > caret.X() + 1;
}

/// False: the control has used it for something else, or not at all.
bool TSurrogatePairs::Press(QStringView character) {
    const QChar last = character.back();
    for (const QChar unit : character) {
        FMemo.KeyPress(unit);
        if (unit.isHighSurrogate() && UnitBeforeCaret() != unit)
            return false; // the other half would stand alone
    }
    return UnitBeforeCaret() == last;
}

void TSurrogatePairs::Replace(const TSelectionRange& range, QStringView text) {
    if (FMemo.Settings.FReadOnly || !FMemo.EditingAllowed())
        return;
    FMemo.Activate();
    FMemo.Selection().Take(range, /*block=*/false);
    const bool deletes = !FMemo.Selection().IsEmpty();
    if (deletes)
        FMemo.Blocks().DeleteSelection();
    else
        FMemo.Caret().MoveTo(range.StartX, range.StartY);
    const bool overwrites = std::exchange(FMemo.Settings.FOverwrite, false);
    bool typed = true;
    for (qsizetype i = 0; typed && i < text.size();) {
        const qsizetype units = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        typed = Press(text.mid(i, units));
        i += units;
    }
    FMemo.Settings.FOverwrite = overwrites;
    TAdvUndoList& list = FMemo.UndoList();
    if (!typed && deletes)
        FMemo.Undo();
    else if (deletes && list.Count() > 1 && dynamic_cast<TInsertCharUndo*>(&list.Get(0)))
        list.Get(0).FLinkedUndo = true;
    Snap();
}

void TSurrogatePairs::Snap() {
    const TMemoCaret& caret = FMemo.Caret();
    const TSelectionRange range = FMemo.Selection().Range();
    const bool empty = FMemo.Selection().IsEmpty();
    const bool block = FMemo.Selection().IsBlock();
    if (const int x = WholeColumn(FMemo.LineText(caret.Y()), caret.X()); x != caret.X()) {
        FMemo.Caret().SetColumn(x);
        if (empty)
            FMemo.ClearSelection();
    }
    const TSelectionRange whole{WholeColumn(FMemo.LineText(range.StartY), range.StartX), range.StartY,
                                WholeColumn(FMemo.LineText(range.EndY), range.EndX), range.EndY};
    if (!empty && whole != range)
        FMemo.Selection().Take(whole, block);
}

void TSurrogatePairs::WidenSelection() {
    TMemoSelection& selection = FMemo.Selection();
    if (selection.IsEmpty())
        return;
    const TSelectionRange range = selection.Range();
    TSelectionRange wide = selection.Ordered();
    const bool backward = wide != range;
    if (selection.IsBlock()) {
        while (CutsPair(FMemo, wide.StartY, wide.EndY, wide.StartX))
            --wide.StartX;
        while (CutsPair(FMemo, wide.StartY, wide.EndY, wide.EndX))
            ++wide.EndX;
        if (wide != selection.Ordered())
            selection.Take(wide, /*block=*/true);
        return;
    }
    // Lines may have become shorter than where the selection was begun.
    wide.StartX = std::min(wide.StartX, FMemo.LineLength(wide.StartY));
    wide.EndX = std::min(wide.EndX, FMemo.LineLength(wide.EndY));
    wide.StartX = WholeColumn(FMemo.LineText(wide.StartY), wide.StartX);
    if (const string line = FMemo.LineText(wide.EndY); WholeColumn(line, wide.EndX) != wide.EndX)
        ++wide.EndX;
    if (backward)
        wide = {wide.EndX, wide.EndY, wide.StartX, wide.StartY};
    if (wide == range)
        return;
    const bool ends = selection.EndsAtCaret();
    selection.Take(wide, /*block=*/false);
    if (ends)
        FMemo.Caret().MoveTo(wide.EndX, wide.EndY);
}

void TSurrogatePairs::Undo() {
    InHistory(FMemo, THistoryStep::Undo, [this] { FMemo.Undo(); });
    Snap();
}

void TSurrogatePairs::Redo() {
    InHistory(FMemo, THistoryStep::Redo, [this] { FMemo.Redo(); });
    Snap();
}
