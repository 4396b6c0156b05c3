#pragma once
// Typed characters, and what corrects the words that they finish.
#include "base/Text.h"

class TMemoEditor;

class TMemoTyping {
public:
    explicit TMemoTyping(TMemoEditor& memo) : FMemo(memo) {}

    void KeyPress(QChar c);

private:
    void CheckFinished(QChar c);
    void ReplaceBeforeCaret(const string& word, const string& by);
    void ReplaceLine(int row, const string& by, int x);
    void Insert(QChar c);

    TMemoEditor& FMemo;
};
