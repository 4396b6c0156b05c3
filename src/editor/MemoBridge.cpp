#include "editor/MemoBridge.h"

#include "editor/Memo.h"

int TMemoBridge::TabSize() const {
    return Active().Settings.FTabSize;
}
int TMemoBridge::CaretX() const {
    return Active().Caret().X();
}
int TMemoBridge::CaretY() const {
    return Active().Caret().Y();
}
void TMemoBridge::WriteCaret(int x, int y) {
    Active().Caret().Write(x, y);
}
void TMemoBridge::MoveCaret(int x, int y) {
    Active().Caret().MoveTo(x, y);
}
void TMemoBridge::ClearSelection() {
    Active().ClearSelection();
}
void TMemoBridge::ClearUndo() {
    Active().ClearUndoRedo();
}
void TMemoBridge::RowsTouched(int index) {
    for (TAdvCustomMemo* memo : FMemos)
        memo->RowsTouched(index);
}
void TMemoBridge::RowsInserted(int index, int count) {
    for (TAdvCustomMemo* memo : FMemos) {
        memo->Bookmarks().RowsInserted(index, count);
        memo->Folding().LinesChanged();
    }
}
void TMemoBridge::RowsRemoved(int index, int count) {
    for (TAdvCustomMemo* memo : FMemos) {
        memo->Bookmarks().RowsRemoved(index, count);
        memo->Folding().LinesChanged();
    }
}
void TMemoBridge::DeleteCaretLine() {
    Active().Editing().DeleteLine();
}
bool TMemoBridge::CodeFolding() const {
    return Active().Folding().Enabled();
}
void TMemoBridge::RemoveCodeFolding(int line) {
    Active().Folding().RemoveCodeFolding(line);
}
void TMemoBridge::MoveFoldEnd(int line) {
    Active().Folding().MoveFoldEnd(line);
}
void TMemoBridge::AutoCodeFold() {
    Active().Folding().AutoCodeFold();
}
void TMemoBridge::LoadBegins() {
    Active().SetLetRefresh(false);
}
void TMemoBridge::LoadEnds(int maxLength) {
    for (TAdvCustomMemo* memo : FMemos)
        memo->Scroll().SetMaxLength(maxLength);
    Active().SetLetRefresh(true);
    Changed();
}
bool TMemoBridge::WordWrapOn() const {
    return Active().Settings.FWordWrap != wwNone;
}
void TMemoBridge::Wrap() {
    Active().Wrap();
}
void TMemoBridge::Unwrap() {
    Active().Unwrap();
}
void TMemoBridge::UpdateWrap() {
    Active().UpdateWrap();
}
void TMemoBridge::Repaint() {
    for (TAdvCustomMemo* memo : FMemos)
        memo->Repaint();
}
void TMemoBridge::RefreshControl() {
    for (TAdvCustomMemo* memo : FMemos)
        memo->RefreshControl();
}

void TMemoBridge::MoveToLine(int y) {
    Active().Caret().SetLine(y);
}
void TMemoBridge::MoveToColumn(int x) {
    Active().Caret().SetColumn(x);
}
string TMemoBridge::LineText(int y) const {
    return Active().LineText(y);
}
void TMemoBridge::StoreLine(int y, const string& text) {
    if (y >= 0 && y < Active().Lines().Count())
        Active().Lines().Put(y, text);
}
void TMemoBridge::SetModifiedState(int line) {
    Active().SetModifiedState(line);
}
void TMemoBridge::InsertChar(QChar c) {
    Active().Editing().InsertChar(c);
}
void TMemoBridge::NewLine() {
    Active().Editing().NewLine();
}
void TMemoBridge::BackSpace() {
    Active().Editing().BackSpace();
}
void TMemoBridge::DeleteChar() {
    Active().Editing().DeleteChar(-1, -1);
}
void TMemoBridge::DeleteLine() {
    Active().Editing().DeleteLine();
}
void TMemoBridge::InsertBuffer(const string& text) {
    Active().Blocks().InsertBuffer(text);
}
void TMemoBridge::InsertColumns(const string& text) {
    Active().Blocks().InsertColumns(text);
}
void TMemoBridge::BlockIndent(int rowFrom, int rowTo, int indent) {
    Active().Blocks().BlockIndent(rowFrom, rowTo, indent, RecordUndo::No);
}
void TMemoBridge::TakeSelection(const TSelectionRange& range, bool block) {
    Active().Selection().Take(range, block);
}
void TMemoBridge::DeleteSelection() {
    Active().Blocks().DeleteSelection();
}
void TMemoBridge::BeginSelectionUpdate() {
    Active().Selection().BeginUpdate();
}
void TMemoBridge::EndSelectionUpdate() {
    Active().Selection().EndUpdate();
}
void TMemoBridge::SetOverwrite(bool overwrite) {
    Active().Settings.FOverwrite = overwrite;
}
bool TMemoBridge::AutoIndent() const {
    return Active().Settings.FAutoIndent;
}
void TMemoBridge::SetAutoIndent(bool autoIndent) {
    Active().Settings.FAutoIndent = autoIndent;
}
void TMemoBridge::UndoChanged(bool canUndo, bool canRedo) {
    for (TAdvCustomMemo* memo : FMemos) {
        if (memo->Events.FOnUndoChange)
            memo->Events.FOnUndoChange(canUndo, canRedo);
    }
}
void TMemoBridge::Changed() {
    for (TAdvCustomMemo* memo : FMemos)
        memo->LinesChanged();
}
