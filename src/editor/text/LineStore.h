#pragma once
// TAdvMemoStrings: the lines of the editor, each with a TLineProp in its object slot once it needs one.
//
// With a control attached, changes through the list act like edits: the caret is kept in range, marks
// move, a deletion can be undone, and tabs are stored as blanks. Without one it is a plain string list.
#include "editor/text/LineStoreOwner.h"
#include "editor/text/StringList.h"

class TAdvMemoStrings : public TStringList {
public:
    using TLineProps = std::vector<std::unique_ptr<TLineProp>>;

    /// The controls that show the lines, the one that the user works with first; may be empty. Borrowed.
    std::vector<TLineStoreOwner*> Owners;
    TLineJournal* Journal = nullptr; ///< borrowed; may be absent

    /// The caller's object of a line. The TLineProp in the slot never shows. An index out of range: null,
    /// and nothing is written.
    [[nodiscard]] TLineObject* GetObject(int index) const override;
    void PutObject(int index, TLineObject* object) override;

    /// With a control, one line per piece between carriage returns; line feeds vanish.
    int Add(const string& text) override { return DoAdd(text); }
    int AddObject(const string& text, TLineObject* object) override;
    /// Does nothing without a control, on purpose: only Assign fills a store that stands alone.
    void AddStrings(const TStringList& list) override;
    /// Inserts a line for each CR LF and one for what follows the last, also when that is empty.
    void Insert(int index, const string& text) override;
    /// Ignores an index out of range. With a control the deletion is undoable.
    void Delete(int index) override;
    void Put(int index, const string& text) override;
    void Clear() override;
    void Assign(const TStringList& list) override;

    /// Loading clears selection and undo history. Only a load from a file marks every line as unmodified.
    void LoadFromFile(const string& name) override;
    void LoadFromStream(QIODevice& stream) override;
    /// Strips trailing blanks from the lines themselves, and writes wrapped lines joined.
    void SaveToFile(const string& name) override;
    /// Writes the lines as they are, wrapped ones with their cuts.
    void SaveToStream(QIODevice& stream) override;

    void DoInsert(int index, const string& text) { InsertRows(index, {text}); }
    /// Neither touches the caret or records an undo step. `count` rows must be there.
    void InsertRows(int index, const std::vector<string>& lines);
    void RemoveRows(int index, int count);
    /// Empties the store without destroying any TLineProp; they go to the caller.
    [[nodiscard]] TLineProps ClearStrings();
    /// Replaces all lines by `lines` with empty slots, telling nobody but OnChange.
    void ReplaceLines(const std::vector<string>& lines);

    /// The line's TLineProp; null when there is none or the index is out of range.
    [[nodiscard]] TLineProp* GetLineProp(int index) const;
    /// Puts `prop` in the slot and destroys the one that was there. Ignores an index out of range.
    void SetLineProp(int index, std::unique_ptr<TLineProp> prop);
    /// Makes the line's TLineProp, with the fold state that its neighbours imply.
    TLineProp& CreateLineProp(int index);
    TLineProp& NeedLineProp(int index);
    /// Takes the TLineProp out of a slot; null if there is none.
    [[nodiscard]] std::unique_ptr<TLineProp> TakeLineProp(int index);
    void DestroyLineProps();

    [[nodiscard]] const TIntList& ListLengths() const { return FListLengths; }
    [[nodiscard]] int LockCount() const { return FLockCount; }
    void RebuildLengths();

    /// A row that word wrap made: it goes on from the one before.
    [[nodiscard]] bool IsContinuation(int index) const;
    [[nodiscard]] TLineModifiedState ModifiedState(int index) const;
    /// True if it was another. Ignores an index out of range.
    bool SetModifiedState(int index, TLineModifiedState state);
    /// Folds were opened or closed.
    void TellFoldsChanged();
    /// The text was saved: changed lines are saved ones now.
    void MarkSaved();

protected:
    virtual int DoAdd(const string& text);
    void SetUpdateState(bool updating) override;

private:
    [[nodiscard]] bool Holds(int index) const { return index >= 0 && index < Count(); }
    [[nodiscard]] string Detabbed(const string& text) const;
    [[nodiscard]] TLineStoreOwner* Active() const { return Owners.empty() ? nullptr : Owners.front(); }
    void TellRowsTouched(int index);
    void Refresh();
    void PlaceFolds(int index, TLineProp& prop) const;
    enum class ResetStates { No, Yes };
    void LoadThroughMemo(const std::function<void()>& load, ResetStates states);
    void TrimTrailingBlanks();

    int FLockCount = 0;
    TLineProps FLinesProp; // every TLineProp of this store
    TIntList FListLengths; // the length of each line
    bool FNoObjCreate = false;
};

/// Blanks in place of each tab; `tabSize` of them wherever the tab stands.
[[nodiscard]] string TabsToBlanks(const string& text, int tabSize);
