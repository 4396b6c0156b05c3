#pragma once
// TMemoEditor: the state of a control with the parts that edit it. What works on the text from above
// (completion, search, commands, a window's keys) takes this.
#include "editor/edit/Blocks.h"
#include "editor/edit/Editing.h"
#include "editor/edit/Keys.h"
#include "editor/edit/Typing.h"
#include "editor/edit/TypingAids.h"
#include "editor/place/MemoState.h"

class TMemoEditor : public TMemoState {
public:
    TMemoEditor() { ShowText(nullptr); }

    [[nodiscard]] TMemoEditing& Editing() { return FEditing; }
    [[nodiscard]] TMemoBlocks& Blocks() { return FBlocks; }
    [[nodiscard]] TTypingAids& Aids() { return FAids; }

    void KeyDown(int key, TShiftState shift);
    void KeyPress(QChar c);
    /// Takes keys and control characters.
    void ExecuteKey(int key, TShiftState shift) { FKeys.ExecuteKey(key, shift); }
    void Undo();
    void Redo();
    [[nodiscard]] bool CanUndo() { return UndoList().CanUndo(); }
    [[nodiscard]] bool CanRedo() { return UndoList().CanRedo(); }

    /// Keeps a history that brings back the very text, of up to `limit` steps (see TAdvUndoList).
    void KeepExactHistory(int limit) { UndoList().KeepExactly(Lines(), limit); }
    /// The text as it is now lies in its file.
    void MarkSaved();

    void DeleteRow(int index) override;
    [[nodiscard]] TUndoTarget& UndoTarget() override;

private:
    void ShowCaretRow();

    TMemoEditing FEditing{*this};
    TMemoBlocks FBlocks{*this};
    TMemoKeys FKeys{*this};
    TMemoTyping FTyping{*this};
    TTypingAids FAids{*this};
    TUndoTarget FUndoTarget{&Lines(), Settings, Caret(), Selection(), FEditing, FBlocks};
};
