#include "editor/edit/Typing.h"

#include "editor/edit/MemoEditor.h"

void TMemoTyping::KeyPress(QChar c) {
    if (c == QChar(keyCtrlC)) {
        FMemo.ExecuteKey(keyCtrlC, 0);
        return;
    }
    if (FMemo.Settings.FReadOnly || !FMemo.EditingAllowed() || FMemo.Assist().TakesChar(c))
        return;
    FMemo.Caret().FShouldCheckCodeFolding = true;
    if (FMemo.Events.OnKeyPress)
        FMemo.Events.OnKeyPress(c);
    CheckFinished(c);
    const char16_t code = c.unicode();
    if (code >= 32 && code != 127)
        Insert(c);
    else if (code != 0 && code != keyCtrlC && code != keyBackspaceChar && code != keyTabChar)
        FMemo.ExecuteKey(code, 0); // Backspace and Tab were served when their keys went down
    FMemo.Assist().CharTyped(c);
}

void TMemoTyping::Insert(QChar c) {
    const int x = FMemo.Caret().X();
    const int y = FMemo.Caret().Y();
    // Where wrapping cuts anew, the two halves wouldn't meet.
    const bool holds = FMemo.Settings.FWordWrap != wwNone && !FMemo.Selection().IsEmpty();
    if (holds)
        FMemo.UndoList().Hold();
    if (FMemo.Settings.FDelErase)
        FMemo.Blocks().DeleteSelection();
    if (FMemo.Settings.FCharCase == ecUpperCase)
        c = c.toUpper();
    else if (FMemo.Settings.FCharCase == ecLowerCase)
        c = c.toLower();
    if (!FMemo.Aids().Type(c)) {
        FMemo.Editing().InsertChar(c);
        FMemo.Aids().Typed(c);
    }
    if (holds)
        FMemo.UndoList().Release(x, y);
    FMemo.SetModifiedState(FMemo.Caret().Y());
    FMemo.RepaintRow(FMemo.Caret().Y());
}

void TMemoTyping::CheckFinished(QChar c) {
    static const string Breaks = "\t\r (,.=[";
    if (!Breaks.contains(c))
        return;
    TAdvMemoChecker* checker = FMemo.FMemoChecker;
    if (c == u'\r' && checker && checker->ChecksLines()) {
        const int row = FMemo.Caret().Y();
        ReplaceLine(row, checker->CheckLine(FMemo.LineText(row)), FMemo.Caret().X());
    }
    const string word = FMemo.Words().WordTillCursor();
    if ((c == u'\t' || c == u' ') && checker && checker->ChecksWords())
        ReplaceBeforeCaret(word, checker->CheckWord(word));
    string answer = FMemo.Words().WordTillCursor();
    const string finished = answer;
    if (FMemo.Events.FonWordComplete)
        FMemo.Events.FonWordComplete(answer);
    ReplaceBeforeCaret(finished, FMemo.Assist().CorrectedWord(answer));
}

void TMemoTyping::ReplaceBeforeCaret(const string& word, const string& by) {
    if (by == word)
        return;
    const int row = FMemo.Caret().Y();
    const int x = FMemo.Caret().X();
    string line = FMemo.LineText(row);
    line.replace(x - word.size(), word.size(), by);
    ReplaceLine(row, line, x + int(by.size() - word.size()));
}

void TMemoTyping::ReplaceLine(int row, const string& by, int x) {
    const string old = FMemo.LineText(row);
    if (by == old)
        return;
    FMemo.CompoundEdit([&] {
        FMemo.Lines().Put(row, by);
        FMemo.Caret().SetColumn(x);
    });
    FMemo.SetModifiedState(row);
    FMemo.AddUndoStep(std::make_unique<TCorrectUndo>(row, old));
}
