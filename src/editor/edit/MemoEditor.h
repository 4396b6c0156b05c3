#pragma once
// TMemoEditor: the state of a control with the parts that edit it. What works on the text from above
// (completion, search, commands, a window's keys) takes this.
#include "editor/edit/Blocks.h"
#include "editor/edit/Editing.h"
#include "editor/edit/Keys.h"
#include "editor/edit/Typing.h"
#include "editor/place/MemoState.h"

class TMemoEditor : public TMemoState {
public:
    TMemoEditor() { ShowText(nullptr); }

    [[nodiscard]] TMemoEditing& Editing() { return FEditing; }
    [[nodiscard]] TMemoBlocks& Blocks() { return FBlocks; }

    void KeyDown(int key, TShiftState shift);
    void KeyPress(QChar c);
    /// Takes keys and control characters.
    void ExecuteKey(int key, TShiftState shift) { FKeys.ExecuteKey(key, shift); }
    void Undo();
    void Redo();
    [[nodiscard]] bool CanUndo() { return UndoList().CanUndo(); }
    [[nodiscard]] bool CanRedo() { return UndoList().CanRedo(); }

    void DeleteRow(int index) override;
    [[nodiscard]] TUndoTarget& UndoTarget() override;

private:
    TMemoEditing FEditing{*this};
    TMemoBlocks FBlocks{*this};
    TMemoKeys FKeys{*this};
    TMemoTyping FTyping{*this};
    TUndoTarget FUndoTarget{&Lines(), Settings, Caret(), Selection(), FEditing, FBlocks};
};
