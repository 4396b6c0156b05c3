#pragma once
// The edits that can be taken back. An entry undoes and redoes itself by replaying ordinary editing
// operations; the list suspends recording meanwhile.
#include "editor/history/UndoTarget.h"

class TUndo {
public:
    TUndo(int x0, int y0, int x, int y, const string& text)
        : FUndoCurX0(x0), FUndoCurY0(y0), FUndoCurX(x), FUndoCurY(y), FUndoText(text) {}
    virtual ~TUndo() = default;

    /// Takes over what `next` did directly behind this entry. False: `next` must stand on its own.
    [[nodiscard]] virtual bool Append(const TUndo& next);
    virtual void PerformUndo() = 0;
    virtual void PerformRedo() = 0;

    /// Perform between moving the caret to one end of the edit and to the other.
    void Undo();
    void Redo();

    TUndoTarget* Memo = nullptr; ///< set when the entry enters its list
    unsigned Number = 0;         ///< of the entries of its list, from 1
    int FUndoCurX0, FUndoCurY0;  ///< caret before the edit
    int FUndoCurX, FUndoCurY;    ///< caret after it
    string FUndoText;            ///< a line break is a carriage return
    bool FLinkedUndo = false;    ///< one step with the older entry beneath

protected:
    [[nodiscard]] bool IsMetBy(const TUndo& next) const {
        return next.FUndoCurX0 == FUndoCurX && next.FUndoCurY0 == FUndoCurY;
    }
    void TakeEndOf(const TUndo& next);

private:
    void MoveCaret(int x, int y);
};

class TInsertCharUndo : public TUndo {
public:
    using TUndo::TUndo;
    [[nodiscard]] bool Append(const TUndo& next) override;
    /// Takes back only characters that are still the ones typed.
    void PerformUndo() override;
    void PerformRedo() override;
};

/// A line break that ends the merging of typing.
class TNewLineUndo : public TUndo {
public:
    using TUndo::TUndo;
    [[nodiscard]] bool Append(const TUndo& next) override;
    void PerformUndo() override;
    void PerformRedo() override;
};

/// Holds the character that was replaced and never the one that replaced it, on purpose: redo writes the
/// old character once more.
class TOverwriteCharUndo : public TUndo {
public:
    using TUndo::TUndo;
    void PerformUndo() override;
    void PerformRedo() override;

private:
    void Replace(int x, int y);
};

class TDeleteCharUndo : public TUndo {
public:
    using TUndo::TUndo;
    /// Puts the newer text in front in both directions of deletion; PerformUndo turns that right.
    [[nodiscard]] bool Append(const TUndo& next) override;
    void PerformUndo() override;
    void PerformRedo() override;
    bool FIsBackspace = false;
};

class TDeleteLineUndo : public TUndo {
public:
    using TUndo::TUndo;
    bool FWasLast = false; ///< no line stood behind it
    void PerformUndo() override;
    void PerformRedo() override;
};

class TSelUndo : public TUndo {
public:
    using TUndo::TUndo;
    int FUndoSelStartX = 0, FUndoSelStartY = 0;
    int FUndoSelEndX = 0, FUndoSelEndY = 0;
    bool FBlock = false; ///< a rectangle; the text is one line per row
    [[nodiscard]] TSelectionRange Selection() const {
        return {FUndoSelStartX, FUndoSelStartY, FUndoSelEndX, FUndoSelEndY};
    }
    void SetSelection(const TSelectionRange& range);
};

class TDeleteBufUndo : public TSelUndo {
public:
    using TSelUndo::TSelUndo;
    void PerformUndo() override;
    void PerformRedo() override;
};

class TPasteUndo : public TUndo {
public:
    TPasteUndo(int x0, int y0, int x, int y, const string& text, bool linked) : TUndo(x0, y0, x, y, text) {
        FLinkedUndo = linked;
    }
    void PerformUndo() override;
    void PerformRedo() override;
};

/// A stretch of text that another took the place of, in one entry: a pair of linked ones could lose a half at
/// the end of the history. The ends of both stretches are taken anew whenever they are put in, since word
/// wrap may cut differently.
class TReplaceUndo : public TUndo {
public:
    /// `range` in text order; `old` is what it holds.
    TReplaceUndo(const TSelectionRange& range, const string& old, const string& text)
        : TUndo(0, 0, 0, 0, text), FRange(range), FOldText(old) {}
    void PerformUndo() override;
    void PerformRedo() override;
    TSelectionRange FBefore, FAfter; ///< what is selected
    bool FBlock = false;             ///< of what was selected before

private:
    void Exchange(const string& by);

    TSelectionRange FRange; // of the text that is there
    string FOldText;
};

class TInsertOverwriteUndo : public TUndo {
public:
    explicit TInsertOverwriteUndo(bool insertMode) : TUndo(0, 0, 0, 0, {}), FInsertMode(insertMode) {}
    void PerformUndo() override { Memo->Settings.FOverwrite = FInsertMode; }
    void PerformRedo() override { Memo->Settings.FOverwrite = !FInsertMode; }
    bool FInsertMode; ///< the overwrite state before the toggle
};

class TIndentUndo : public TUndo {
public:
    TIndentUndo(int rowFrom, int rowTo, int indent)
        : TUndo(0, 0, 0, 0, {}), FIndent(indent), FSelRowFrom(rowFrom), FSelRowTo(rowTo) {}
    void PerformUndo() override {
        Memo->Blocks.BlockIndent(FSelRowFrom, FSelRowTo, -FIndent, RecordUndo::No);
    }
    void PerformRedo() override { Memo->Blocks.BlockIndent(FSelRowFrom, FSelRowTo, FIndent, RecordUndo::No); }
    int FIndent;
    int FSelRowFrom, FSelRowTo;
};

/// A line that the spell checker replaced. Undo and redo both swap. It has a row and no other positions;
/// those of -1 leave the caret where it is.
class TCorrectUndo : public TUndo {
public:
    TCorrectUndo(int row, const string& text) : TUndo(-1, -1, -1, -1, text) { FUndoCurY = row; }
    void PerformUndo() override;
    void PerformRedo() override { PerformUndo(); }
};
