#include "editor/place/CaretMoves.h"

#include "editor/place/MemoState.h"

#include <algorithm>

bool TCaretMoves::Extends(TShiftState shift) const {
    return Held(shift, ssShift) && FMemo.Selection().EndsAtCaret();
}

void TCaretMoves::EndMove(bool extends) {
    if (extends)
        FMemo.Selection().Extend();
    else
        FMemo.Selection().Clear();
}

void TCaretMoves::MoveCaret(int dx, int dy, TShiftState shift) {
    const bool extends = Extends(shift);
    if (Held(shift, ssCtrl)) {
        if (dx > 0)
            WordRight();
        else if (dx < 0)
            WordLeft();
        EndMove(extends);
        return;
    }
    TMemoCaret& caret = FMemo.Caret();
    if (dy != 0)
        caret.SetLine(FMemo.Folding().StepVisible(caret.Y(), dy));
    MoveColumn(dx, dy, shift);
    EndMove(extends);
    if (Held(shift, ssShift) && FMemo.Settings.FSelectSingleLine && !FMemo.Settings.FAutoExpand)
        FMemo.Selection().SetStart(FMemo.Selection().Range().StartX, FMemo.Selection().Range().EndY);
}

void TCaretMoves::MoveColumn(int dx, int dy, TShiftState shift) {
    TMemoCaret& caret = FMemo.Caret();
    const TMemoSettings& settings = FMemo.Settings;
    const int x = caret.X() + dx;
    const bool block = Held(shift, ssShift) && settings.FSelectionMode == smBlock;
    const bool free = block || settings.FAutoExpand;
    if (!free && Held(shift, ssShift) && settings.FSelectSingleLine) {
        caret.SetColumn(std::clamp(x, 0, FMemo.LineLength(caret.Y())));
    } else if (!free && dx >= 0 && dy == 0 && caret.X() >= LineEnd(caret.Y())) {
        // Column first, line then, on purpose: at the end of the last line the caret jumps to its start.
        caret.SetColumn(0);
        caret.SetLine(FMemo.Folding().StepVisible(caret.Y(), 1));
    } else {
        caret.SetColumn(x);
    }
}

/// From where on Right goes to the next line.
int TCaretMoves::LineEnd(int row) const {
    return FMemo.Settings.FRightOverBlanks ? FMemo.LineLength(row) : FMemo.TrimmedLength(row);
}

/// The line's text, or its start for a caret that is there already.
int TCaretMoves::SmartHome() const {
    const string line = FMemo.LineText(FMemo.Caret().Y());
    int text = 0;
    while (text < line.size() && line[text] == u' ')
        ++text;
    return text == line.size() || text == FMemo.Caret().X() ? 0 : text;
}

void TCaretMoves::WordLeft() {
    TMemoCaret& caret = FMemo.Caret();
    const string line = FMemo.LineText(caret.Y());
    const string delimiters = FMemo.Words().Delimiters();
    int x = caret.X() - 1;
    while (x >= 1 && x < line.size() && !(delimiters.contains(line[x - 1]) && line[x] != u' '))
        --x;
    caret.SetColumn(x); // -1 is the end of the visible line above
}

void TCaretMoves::WordRight() {
    TMemoCaret& caret = FMemo.Caret();
    const string line = FMemo.LineText(caret.Y());
    const string delimiters = FMemo.Words().Delimiters();
    int x = caret.X() + 1;
    while (x < line.size() && !(delimiters.contains(line[x - 1]) && line[x] != u' '))
        ++x;
    const int below = FMemo.Folding().StepVisible(caret.Y(), 1);
    if (x <= line.size()) {
        caret.SetColumn(x);
    } else if (below > caret.Y()) {
        caret.SetColumn(0);
        caret.SetLine(below);
    }
}

int TCaretMoves::EnhancedHome() const {
    const string line = FMemo.LineText(FMemo.Caret().Y());
    int x = std::min(FMemo.Caret().X() - 1, int(line.size()) - 1);
    while (x > 0 && !(line[x - 1] == u' ' && line[x] != u' '))
        --x;
    return std::max(x, 0);
}

void TCaretMoves::Home(TShiftState shift) {
    TMemoCaret& caret = FMemo.Caret();
    if (FMemo.Lines().Count() == 0) {
        caret.Write(0, 0);
        return;
    }
    const TSelectionRange before = FMemo.Selection().Range();
    if (Held(shift, ssCtrl))
        caret.MoveTo(0, 0);
    const bool extends = Extends(shift);
    if (FMemo.Settings.FSmartHome && !Held(shift, ssCtrl)) {
        caret.SetColumn(SmartHome());
    } else if (FMemo.Settings.FEnhancedHomeKey) {
        caret.SetColumn(EnhancedHome());
    } else {
        caret.SetColumn(0);
        FMemo.Scroll().SetLeftCol(0);
    }
    EndMove(extends);
    EndJump(shift, before.StartX, before.StartY);
}

void TCaretMoves::End(TShiftState shift) {
    TMemoCaret& caret = FMemo.Caret();
    if (FMemo.Lines().Count() == 0) {
        caret.Write(0, 0);
        return;
    }
    const TSelectionRange before = FMemo.Selection().Range();
    if (Held(shift, ssCtrl)) {
        const int last = FMemo.Folding().StepVisible(FMemo.Lines().Count() - 1, 0);
        caret.MoveTo(FMemo.LineLength(last), last);
    }
    const bool extends = Extends(shift);
    caret.SetColumn(FMemo.Settings.FAutoExpand ? FMemo.LineLength(caret.Y())
                                               : FMemo.TrimmedLength(caret.Y()));
    EndMove(extends);
    EndJump(shift, before.StartX, before.StartY);
}

/// Ctrl has carried the caret away from where the selection ended: its start is put back.
void TCaretMoves::EndJump(TShiftState shift, int startX, int startY) {
    if (Held(shift, ssCtrl) && Held(shift, ssShift))
        FMemo.Selection().SetStart(startX, startY);
}

void TCaretMoves::Page(int direction, TShiftState shift) {
    const bool extends = Extends(shift);
    TMemoCaret& caret = FMemo.Caret();
    const int last = std::max(0, FMemo.Lines().Count() - 1);
    const int rows = FMemo.Scroll().RowsInView();
    if (Held(shift, ssCtrl)) {
        if (direction < 0)
            caret.MoveTo(0, 0);
        else
            caret.MoveTo(FMemo.LineLength(last), last);
    } else if (rows > 0) {
        if (FMemo.Lines().Count() <= rows)
            caret.SetLine(direction < 0 ? 0 : FMemo.Folding().StepVisible(last, 0));
        else
            MovePage(direction * rows);
    }
    EndMove(extends);
}

void TCaretMoves::MovePage(int rows) {
    TMemoScroll& scroll = FMemo.Scroll();
    const TMemoFolding& folding = FMemo.Folding();
    const int top = folding.StepVisible(scroll.TopLine(), rows);
    FMemo.Caret().SetLine(folding.StepVisible(FMemo.Caret().Y(), rows));
    scroll.SetTopLine(top);
    scroll.ScrollCaretIntoView();
}

void TCaretMoves::ScrollLine(int direction) {
    TMemoScroll& scroll = FMemo.Scroll();
    TMemoCaret& caret = FMemo.Caret();
    scroll.SetTopLine(FMemo.Folding().StepVisible(scroll.TopLine(), direction));
    const int bottom = scroll.LastRowInView();
    if (direction < 0 && scroll.RowsInView() > 0 && caret.Y() > bottom)
        caret.SetLine(bottom);
    if (direction > 0 && caret.Y() < scroll.TopLine())
        caret.SetLine(scroll.TopLine());
}
