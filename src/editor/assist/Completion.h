#pragma once
// The completion list: what opens it, what it offers, what keys do in it, and how an entry is put in.
#include "editor/assist/CompletionBox.h"
#include "editor/assist/ParameterHint.h"
#include "editor/place/MemoAssist.h"

class TMemoEditor;

struct TCompletionEvents {
    std::function<void(const string& word, bool& allow)> OnBeforeAutoCompletion;
    /// May replace the list. `token` is in upper case; behind a start token it ends with that.
    std::function<void(const string& token, TCompletionList& list)> OnGetAutoCompletionList;
    std::function<void(const string& word, const TCompletionList& list, int& index)>
        OnGetAutoCompletionListIndex;
    std::function<void()> OnStartAutoCompletion;
    std::function<void(const string& text)> OnAutoCompletion;
    std::function<void()> OnCancelAutoCompletion;
    /// May change what is put in.
    std::function<void(string& text)> OnInsertAutoCompletionEntry;
};

enum class AddBrackets { No, Yes };

class TMemoCompletion : public TMemoAssist {
public:
    /// Becomes the control's assistant as long as it lives; it goes before the control.
    explicit TMemoCompletion(TMemoEditor& memo);
    ~TMemoCompletion() override;
    TMemoCompletion(const TMemoCompletion&) = delete;
    TMemoCompletion& operator=(const TMemoCompletion&) = delete;

    TAutoCompletion FAutoCompletion;
    TAutoCorrect FAutoCorrect;
    TCompletionEvents Events;
    [[nodiscard]] TParameterHint& Hint() { return FHint; }
    /// Borrowed. Without a window nothing opens.
    void SetWindow(TAssistWindow* window);

    void ShowCompletionList();
    /// Keeps the entries that fit `word`, in upper case.
    void RefreshCompletionList(const string& word);
    void CloseCompletionList();
    void AcceptCompletionEntry(AddBrackets brackets);
    /// A click in the list.
    void ListClicked(int index);
    /// The list's window lost the focus to another.
    void ListDeactivated();
    void TimerFired();
    [[nodiscard]] bool IsOpen() const override { return FListCompletion != nullptr; }
    /// The list is there because the user asked for it.
    [[nodiscard]] bool Requested() const { return FRequested; }
    [[nodiscard]] const TAutoCompletionListBox& ListCompletion() const { return *FListCompletion; }

    bool TakesKey(int key, TShiftState shift) override;
    bool TakesChar(QChar c) override;
    void CharTyped(QChar c) override;
    void Ask(bool parameterHint) override;
    string CorrectedWord(const string& word) override { return FAutoCorrect.Corrected(word); }
    void HideHint() override { FHint.HideHint(); }
    void AllowAutoHint(bool allow) override { FHint.AllowAutoHint(allow); }

protected:
    // What a language may see differently.
    [[nodiscard]] virtual bool IsStartToken(QChar c) const;
    [[nodiscard]] virtual bool HasStartToken(const string& word) const;
    [[nodiscard]] virtual bool IsHintStart(QChar c) const;
    [[nodiscard]] virtual bool IsCompletionChar(QChar c) const;
    [[nodiscard]] virtual bool IsCompletionStop(QChar c) const;

private:
    enum class Path { Key, Mouse };
    [[nodiscard]] string CompletionToken() const;
    [[nodiscard]] string FilterWord() const;
    [[nodiscard]] bool DotOffers() const;
    [[nodiscard]] bool MovesInList(int key);
    [[nodiscard]] bool YieldsKey(int key, TShiftState shift);
    [[nodiscard]] bool YieldsChar(QChar c);
    [[nodiscard]] bool IsChosen() const;
    void FollowTyping(QChar c);
    void SelectExact(const string& word);
    void CollectEntries(const string& word);
    [[nodiscard]] int AskForList(const string& word);
    void OpenWindow();
    [[nodiscard]] int ListWidth();
    void Accept(Path path, AddBrackets brackets);
    [[nodiscard]] static string EntryText(const string& entry, Path path);
    void Replace(const string& text, Path path);
    void EraseInList();
    void InsertInMemo(QChar c);
    void Cancel();

    TMemoEditor& FMemo;
    TAssistWindow* FWindow = nullptr;
    TParameterHint FHint;
    std::unique_ptr<TAutoCompletionListBox> FListCompletion; // there while the list is open
    TCompletionList FAutoCompleteList;                       // the entries before filtering
    bool FAutoCompleteDot = false;                           // opened behind a start token
    int FDotX = 0, FDotY = 0;                                // where the completed word begins then
    bool FRequested = false;
    bool FMoved = false; // the user moved the selection in the list
};
