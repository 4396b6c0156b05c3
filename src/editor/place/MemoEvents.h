#pragma once
// The control's events. All may be empty.
#include "editor/place/MemoView.h"

#include <functional>

struct TMemoEvents {
    std::function<void()> OnChange;
    std::function<void(int column)> FOnColumnChange;
    std::function<void(int line)> FOnActiveLineChange;
    std::function<void()> FOnCursorChange;
    std::function<void()> FOnSelectionChange;
    std::function<void(bool canUndo, bool canRedo)> FOnUndoChange;
    std::function<void(bool& allow)> FOnOverwriteToggle;
    /// May replace the word that was just finished.
    std::function<void(string& word)> FonWordComplete;
    std::function<void()> FOnFind;
    std::function<void()> FOnReplace;
    /// Either may change what it is given; 0 ends the key.
    std::function<void(int& key, TShiftState shift)> OnKeyDown;
    std::function<void(QChar& c)> OnKeyPress;
    /// False forbids the key to edit.
    std::function<bool()> FOnAllowEdit;
};

/// The spelling checker that a control may have.
class TAdvMemoChecker {
public:
    virtual ~TAdvMemoChecker() = default;
    /// Whether it looks at whole lines on Enter, and at words on Tab and blank.
    [[nodiscard]] virtual bool ChecksLines() const = 0;
    [[nodiscard]] virtual bool ChecksWords() const = 0;
    /// Both return the text to put in place, or the same text.
    [[nodiscard]] virtual string CheckLine(const string& line) = 0;
    [[nodiscard]] virtual string CheckWord(const string& word) = 0;
};
