#pragma once
// The rows that show, ready to be painted. They are kept until the text, the styles or the font change, as a
// blinking caret asks for them again and again.
#include "desktop/memo/MemoFonts.h"
#include "desktop/memo/MemoRow.h"
#include "editor/Memo.h"

#include <functional>
#include <unordered_map>

/// Text that an input method has not committed yet. It shows at the caret and is no part of the text.
struct TPreedit {
    string Text;
    QList<QTextLayout::FormatRange> Formats;
    int Cursor = 0; ///< the caret's place in Text; -1 hides it
    bool operator==(const TPreedit&) const = default;
};

class TMemoRows {
public:
    TMemoRows(TAdvCustomMemo& memo, const TMemoFonts& fonts) : FMemo(memo), FFonts(fonts) {}

    TPreedit Preedit;
    /// Colours a run of a row that is laid out; may be empty.
    std::function<void(const TStyleRun& run, QTextCharFormat& format)> Colour;

    /// Holds until the next call.
    [[nodiscard]] const TMemoRow& Of(int row);
    void Forget() { FRows.clear(); }
    [[nodiscard]] bool HasPreedit(int row) const {
        return !Preedit.Text.isEmpty() && row == FMemo.Caret().Y();
    }

private:
    using TFormats = QList<QTextLayout::FormatRange>;
    struct TStamp {
        quint64 Runs = 0;
        TPreedit Preedit;
        int X = 0, Y = 0; // of the caret, while there is preedit text
        bool operator==(const TStamp&) const = default;
    };
    /// A run of a row and where it begins.
    struct TRunAt {
        size_t Run = 0;
        int Column = 0;
    };
    void ForgetStale();
    [[nodiscard]] TMemoRow Make(int row) const;
    void TakePreedit(TMemoRow& row) const;
    [[nodiscard]] TFormats FormatsOf(const TMemoRow& row, const TMemoPiece& piece, TRunAt& at) const;
    [[nodiscard]] QTextCharFormat FormatOf(const TStyleRun& run) const;
    void LayOut(const TMemoRow& row, TMemoPiece& piece, TRunAt& at) const;

    TAdvCustomMemo& FMemo;
    const TMemoFonts& FFonts;
    TStamp FStamp;
    std::unordered_map<int, TMemoRow> FRows;
};
