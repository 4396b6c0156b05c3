#pragma once
// What typing gets done without being asked: pairs of brackets and quotes, and the indentation of blocks.
// Each is a switch of TMemoSettings. In strings, comments and expressions characters are only what they are.
#include "base/Text.h"

class TMemoEditor;

class TTypingAids {
public:
    explicit TTypingAids(TMemoEditor& memo) : FMemo(memo) {}

    /// True: the character is in the text, or the caret went over the one that was there for it.
    [[nodiscard]] bool Type(QChar c);
    /// The character was put in as it is.
    void Typed(QChar c);
    /// Enter between or behind braces; false leaves it to the plain line break.
    [[nodiscard]] bool BreakLine();
    /// Backspace in an empty pair takes both halves.
    [[nodiscard]] bool Erase();
    /// An opening bracket was put in with its closing one, which stands at the caret.
    void PairPut();

private:
    /// A closing character that came with its opening one. Typing goes on before it, so that it keeps its
    /// place counted from the end.
    struct TCloser {
        int RowsBehind, CharactersBehind;
        QChar Character;
    };
    [[nodiscard]] bool InCode(int x) const;
    [[nodiscard]] bool OpensPair(QChar c, QChar& close) const;
    void PutPair(QChar open, QChar close);
    [[nodiscard]] bool GoOver(QChar c);
    void BringUp(const TCloser& closer, int row);
    void Unindent();
    void Remember();
    void ForgetIfElsewhere();

    TMemoEditor& FMemo;
    std::vector<TCloser> FClosers; // the innermost last
    int FX = -1, FY = -1;          // where typing goes on; elsewhere the closers are forgotten
};
