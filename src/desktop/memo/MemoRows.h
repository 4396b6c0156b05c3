#pragma once
// The rows that show, ready to be painted: each row's runs, and its layout where it doesn't lie on the grid.
// They are kept until the text, the styles or the font change, as a blinking caret asks for them again and
// again.
#include "desktop/memo/MemoFonts.h"
#include "editor/Memo.h"

#include <QTextLayout>

#include <functional>
#include <unordered_map>

/// Text that an input method has not committed yet. It shows at the caret and is no part of the text.
struct TPreedit {
    string Text;
    QList<QTextLayout::FormatRange> Formats;
    int Cursor = 0; ///< the caret's place in Text; -1 hides it
    bool operator==(const TPreedit&) const = default;
};

struct TMemoRow {
    string Text;
    std::vector<TStyleRun> Runs;
    std::unique_ptr<QTextLayout> Layout; ///< null: every character takes one cell
    bool Mixed = false;                  ///< some of the text runs from right to left
    int PreeditAt = 0;
    int PreeditLength = 0; ///< 0: the row holds no preedit text

    /// Columns and places in the layout, which counts preedit text.
    [[nodiscard]] int ToLayout(int column) const;
    [[nodiscard]] int ToColumn(int place) const;
    /// The left edge of a column, which isn't behind the text's end, in pixels from the row's beginning.
    [[nodiscard]] int XOf(int column, int cellWidth) const;
};

class TMemoRows {
public:
    TMemoRows(TAdvCustomMemo& memo, const TMemoFonts& fonts) : FMemo(memo), FFonts(fonts) {}

    TPreedit Preedit;
    /// Colours of a run of a row that is laid out; may be empty.
    std::function<void(const TStyleRun& run, QTextCharFormat& format)> Colour;

    /// Holds until the next call.
    [[nodiscard]] const TMemoRow& Of(int row);
    void Forget() { FRows.clear(); }
    [[nodiscard]] bool HasPreedit(int row) const {
        return !Preedit.Text.isEmpty() && row == FMemo.Caret().Y();
    }

private:
    struct TStamp {
        quint64 Runs = 0;
        TPreedit Preedit;
        int X = 0, Y = 0; // of the caret, while there is preedit text
        bool operator==(const TStamp&) const = default;
    };
    void ForgetStale();
    [[nodiscard]] TMemoRow Make(int row) const;
    [[nodiscard]] QList<QTextLayout::FormatRange> FormatsOf(const TMemoRow& row) const;
    void LayOut(TMemoRow& row) const;

    TAdvCustomMemo& FMemo;
    const TMemoFonts& FFonts;
    TStamp FStamp;
    std::unordered_map<int, TMemoRow> FRows;
};

/// The nearest column at or before `column` that isn't inside a surrogate pair.
[[nodiscard]] int WholeColumn(QStringView text, int column);
