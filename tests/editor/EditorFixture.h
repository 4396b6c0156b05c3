#pragma once
// The vocabulary of the editor's tests: texts with a bar where the caret stands, and keys.
#include "editor/Memo.h"

#include <gtest/gtest.h>

#include <string>

/// A number from the environment.
inline int Setting(const char* name, int fallback) {
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : fallback;
}

struct TTestClipboard : TMemoClipboard {
    string Held;
    string Text() const override { return Held; }
    void SetText(const string& text) override { Held = text; }
};

struct TEditor {
    TAdvMemo Memo;
    TTestClipboard Clipboard;

    TEditor() { Memo.Clipboard = &Clipboard; }
    explicit TEditor(const char* text) : TEditor() { Given(text); }

    /// Lines between line feeds; the bar is the caret.
    void Given(const char* text) {
        const QStringList lines = QString(text).split('\n');
        QString plain = QString(text).remove('|');
        Memo.SetText(plain.isEmpty() ? "\n" : plain + '\n');
        for (int y = 0; y < lines.size(); ++y) {
            if (const qsizetype x = lines[y].indexOf('|'); x >= 0)
                At(int(x), y);
        }
    }
    void At(int x, int y) {
        Memo.Caret().MoveTo(x, y);
        Memo.ClearSelection();
    }
    /// What a window sends for typed text: Enter and Tab with their key events.
    void Type(const char* text) {
        for (const QChar c : QString(text)) {
            const int key = c == '\n' ? int(keyReturn) : c == '\t' ? int(keyTab) : c.toUpper().unicode();
            Memo.KeyDown(key, 0);
            Memo.KeyPress(c == '\n' ? QChar('\r') : c);
        }
    }
    void Key(int key, TShiftState shift = 0, int times = 1) {
        while (times-- > 0)
            Memo.KeyDown(key, shift);
    }
    void Select(const TSelectionRange& range) {
        Memo.Caret().MoveTo(range.EndX, range.EndY);
        Memo.Selection().Take(range, Memo.Settings.FSelectionMode == smBlock);
    }
    void Styled(TAdvCustomMemoStyler& styler) { Memo.SetStyler(&styler); }

    [[nodiscard]] std::string Lines() const {
        std::string text;
        for (int i = 0; i < Memo.Lines().Count(); ++i)
            text.append(i ? "\n" : "").append(Memo.Lines()[i].toStdString());
        return text;
    }
    /// The text with the bar.
    [[nodiscard]] std::string Shown() const {
        std::string text;
        for (int i = 0; i < Memo.Lines().Count(); ++i) {
            QString line = Memo.Lines()[i];
            if (i == Memo.Caret().Y())
                line.insert(Memo.Caret().X(), '|');
            text.append(i ? "\n" : "").append(line.toStdString());
        }
        return text;
    }
};
