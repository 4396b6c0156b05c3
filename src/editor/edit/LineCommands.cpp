#include "editor/edit/LineCommands.h"

#include "editor/edit/MemoEditor.h"

#include <algorithm>

namespace {

qsizetype IndentOf(const string& line) {
    return std::find_if(line.begin(), line.end(), [](QChar c) { return c != u' '; }) - line.begin();
}

bool IsBlank(const string& line) {
    return IndentOf(line) == line.size();
}

string Joined(const std::vector<string>& lines) {
    return QStringList(lines.begin(), lines.end()).join(u'\n');
}

/// A change of one line: text put in at a column, or taken away from there on.
struct TLineEdit {
    int Column = 0;
    int Added = 0; // negative: taken away

    /// Where what is at `column` goes. The start of a selection stays before what is put in there.
    [[nodiscard]] int Map(int column, bool startsSelection) const {
        const bool before = column < Column || (startsSelection && column == Column);
        return before ? column : std::max(Column, column + Added);
    }
};

bool AllCommented(const std::vector<string>& lines, const string& mark) {
    return std::all_of(lines.begin(), lines.end(), [&mark](const string& line) {
        return IsBlank(line) || QStringView(line).mid(IndentOf(line)).startsWith(mark);
    });
}

TLineEdit Uncomment(string& line, const string& mark) {
    const qsizetype at = IndentOf(line);
    const qsizetype behind = at + mark.size();
    const qsizetype length = mark.size() + (behind < line.size() && line[behind] == u' ' ? 1 : 0);
    line.remove(at, length);
    return {int(at), -int(length)};
}

std::vector<TLineEdit> ToggleMarks(std::vector<string>& lines, const string& mark) {
    const bool away = AllCommented(lines, mark);
    qsizetype indent = std::numeric_limits<int>::max();
    for (const string& line : lines) {
        if (!IsBlank(line))
            indent = std::min(indent, IndentOf(line));
    }
    std::vector<TLineEdit> edits;
    for (string& line : lines) {
        if (IsBlank(line)) {
            edits.push_back({});
        } else if (away) {
            edits.push_back(Uncomment(line, mark));
        } else {
            line.insert(indent, mark + u' ');
            edits.push_back({int(indent), int(mark.size()) + 1});
        }
    }
    return edits;
}

} // namespace

bool TLineCommands::Allowed() const {
    return !FMemo.Settings.FReadOnly && FMemo.EditingAllowed() && FMemo.Lines().Count() > 0;
}

TLineCommands::TRows TLineCommands::LineAround(int row) const {
    TRows rows{row, row};
    while (FMemo.IsContinuation(rows.First))
        --rows.First;
    while (FMemo.IsContinuation(rows.Last + 1))
        ++rows.Last;
    return rows;
}

TLineCommands::TRows TLineCommands::SelectedRows() const {
    if (FMemo.Selection().IsEmpty())
        return LineAround(FMemo.Caret().Y());
    const TSelectionRange range = FMemo.Selection().Ordered();
    const bool touches = range.EndX > 0 || range.EndY == range.StartY;
    const int last = std::min(range.EndY - (touches ? 0 : 1), FMemo.Lines().Count() - 1);
    return {LineAround(range.StartY).First, LineAround(last).Last};
}

std::vector<string> TLineCommands::LinesOf(const TRows& rows) const {
    std::vector<string> lines;
    for (int row = rows.First; row <= rows.Last; ++row) {
        if (lines.empty() || !FMemo.IsContinuation(row))
            lines.emplace_back();
        lines.back() += FMemo.LineText(row);
    }
    return lines;
}

int TLineCommands::CaretOffset() const {
    return FMemo.Words().TextFromPos(FMemo.Caret().X(), FMemo.Caret().Y());
}

int TLineCommands::Anchor() const {
    const TSelectionRange range = FMemo.Selection().Range();
    return FMemo.Selection().IsEmpty() ? CaretOffset()
                                       : FMemo.Words().TextFromPos(range.StartX, range.StartY);
}

void TLineCommands::PutInPlace(const TRows& rows, const std::vector<string>& lines, int anchor, int caret) {
    FMemo.Blocks().ReplaceRange({0, rows.First, FMemo.LineLength(rows.Last), rows.Last}, Joined(lines),
                                anchor, caret);
}

void TLineCommands::ToggleComment() {
    const TAdvCustomMemoStyler* styler = FMemo.GetStyler();
    if (!Allowed() || styler == nullptr || styler->FLineComment.isEmpty())
        return;
    const TRows rows = SelectedRows();
    const std::vector<string> old = LinesOf(rows);
    std::vector<string> lines = old;
    const std::vector<TLineEdit> edits = ToggleMarks(lines, styler->FLineComment);
    if (lines == old)
        return;
    const int first = FMemo.Words().TextFromPos(0, rows.First);
    const int start = FMemo.Selection().IsEmpty() ? -1 : std::min(Anchor(), CaretOffset());
    const auto map = [&](int offset) {
        int before = first; // where the line begins, then and now
        int after = first;
        for (size_t i = 0; i < old.size() && offset >= before; ++i) {
            if (offset <= before + int(old[i].size()))
                return after + edits[i].Map(offset - before, /*startsSelection=*/offset == start);
            before += int(old[i].size()) + 1;
            after += int(lines[i].size()) + 1;
        }
        return offset + after - before;
    };
    PutInPlace(rows, lines, map(Anchor()), map(CaretOffset()));
}

void TLineCommands::MoveUp() {
    const TRows rows = SelectedRows();
    if (!Allowed() || rows.First == 0)
        return;
    const TRows above = LineAround(rows.First - 1);
    std::vector<string> lines = LinesOf(rows);
    lines.push_back(LinesOf(above).front());
    const int by = int(lines.back().size()) + 1;
    PutInPlace({above.First, rows.Last}, lines, Anchor() - by, CaretOffset() - by);
}

void TLineCommands::MoveDown() {
    const TRows rows = SelectedRows();
    if (!Allowed() || rows.Last >= FMemo.Lines().Count() - 1)
        return;
    const TRows below = LineAround(rows.Last + 1);
    std::vector<string> lines = LinesOf(rows);
    lines.insert(lines.begin(), LinesOf(below).front());
    const int by = int(lines.front().size()) + 1;
    PutInPlace({rows.First, below.Last}, lines, Anchor() + by, CaretOffset() + by);
}

void TLineCommands::Duplicate() {
    if (!Allowed())
        return;
    const TRows rows = SelectedRows();
    const string text = Joined(LinesOf(rows)) + u'\n';
    const int by = int(text.size());
    FMemo.Blocks().ReplaceRange({0, rows.First, 0, rows.First}, text, Anchor() + by, CaretOffset() + by);
}
