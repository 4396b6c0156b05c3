// How fast the script editor's control is with a megabyte of text. Prints one line a measurement and fails
// where a promise is broken.
#include "EditorScript.h"
#include "editor/Memo.h"
#include "editor/style/JSMemoStyler.h"

#include <QBuffer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int Lines = 25000;
constexpr int PageRows = 60;

template <class F> double Milliseconds(F run) {
    const qint64 start = Now();
    run();
    return double(Now() - start) / 1e6;
}

/// The median, what nine runs of ten keep to, and the worst. The second counts.
template <class F> bool Measure(const char* what, double limit, int times, F run) {
    std::vector<double> taken;
    for (int i = 0; i < times; ++i)
        taken.push_back(Milliseconds(run));
    std::sort(taken.begin(), taken.end());
    const double slow = taken[size_t((times - 1) * 9 / 10)];
    const bool kept = limit == 0 || slow < limit;
    std::printf("%-52s median %8.3f ms, 90 %% under %8.3f ms, worst %8.3f ms%s\n", what,
                taken[size_t(times / 2)], slow, taken.back(), kept ? "" : "  TOO SLOW");
    return kept;
}

void Load(TAdvMemo& memo, const QByteArray& text) {
    QBuffer buffer;
    buffer.setData(text);
    buffer.open(QIODevice::ReadOnly);
    memo.Lines().LoadFromStream(buffer);
}

bool Editing(TAdvMemo& memo, const char* where, int row) {
    bool kept = true;
    const auto name = [where](const char* what) { return QByteArray(what) + ", " + where; };
    memo.Caret().MoveTo(5, row);
    for (int i = 0; i < PageRows; ++i)
        (void)memo.RunsOf(row + i);
    kept &= Measure(name("type a character and style the page"), 2, 200, [&] {
        memo.KeyDown('X', 0);
        memo.KeyPress('x');
        for (int i = 0; i < PageRows; ++i)
            (void)memo.RunsOf(row + i);
    });
    kept &= Measure(name("break a line"), 2, 200, [&] {
        memo.KeyDown(keyReturn, 0);
        memo.KeyPress('\r');
    });
    kept &= Measure(name("delete a line"), 2, 200, [&] { memo.Editing().DeleteLine(); });
    const int page = memo.Lines().Count() / 2; // untouched rows, whose checkpoints the edits made stale
    Measure(name("style a page after an edit, cold"), 0, 1, [&] { (void)memo.RunsOf(page); });
    kept &= Measure(name("style a page"), 2, 200, [&] {
        for (int i = 0; i < PageRows; ++i)
            (void)memo.RunsOf(page + i);
    });
    return kept;
}

bool LongLines() {
    TAdvJSMemoStyler styler;
    TStyleRules rules;
    rules.Styler = &styler;
    rules.FUseStyler = true;
    const std::vector<std::pair<const char*, QString>> lines{
        {"code", "var a = \"b\" + 12; /* c */ "},  {"one word", "a"}, {"one string", "\"a"},
        {"strings with comment marks", "\"/*\" "}, {"blanks", " "},   {"signs", "+"}};
    bool kept = true;
    for (const auto& [name, unit] : lines) {
        const QString one = unit.repeated(100000 / unit.size()), four = unit.repeated(400000 / unit.size());
        double small = 1e9, large = 1e9; // the best of a few
        for (int i = 0; i < 5; ++i) {
            small = std::min(small, Milliseconds([&] { (void)RunsOfLine(one, {}, rules); }));
            large = std::min(large, Milliseconds([&] { (void)RunsOfLine(four, {}, rules); }));
        }
        const bool linear = large < small * 8;
        std::printf("scan 100 KB of %-31s %9.3f ms, four times as much %9.3f ms%s\n", name, small, large,
                    linear ? "" : "  NOT LINEAR");
        kept &= linear;
    }
    return kept;
}

} // namespace

int main() {
    bool kept = true;
    TAdvJSMemoStyler styler;
    TAdvMemo memo;
    memo.SetStyler(&styler);
    memo.Scroll().Resize({8, 16}, 800, 16 * PageRows);
    const QByteArray megabyte = Script(Lines);

    kept &= Measure("load 10 MB", 1000, 1, [&] { Load(memo, Script(10 * Lines)); });
    Load(memo, megabyte);
    Measure("style the last page cold", 0, 1, [&] { (void)memo.RunsOf(Lines - 1); });
    kept &= Editing(memo, "top", 0);
    (void)memo.RunsOf(Lines - PageRows);
    kept &= Editing(memo, "end", Lines - 2 * PageRows);
    memo.Folding().SetEnabled(true);
    Measure("find the folds", 0, 20, [&] { memo.Folding().AutoCodeFold(); });
    kept &= Editing(memo, "top, folds on", 0);
    memo.Folding().SetEnabled(false);

    Load(memo, megabyte);
    memo.Settings.FRightMargin = 30;
    memo.SetWordWrap(wwRightMargin);
    memo.Caret().MoveTo(5, 0);
    Measure("type a character, wrap on (every line is cut)", 0, 20, [&] {
        memo.KeyDown('X', 0);
        memo.KeyPress('x');
    });
    kept &= LongLines();
    return kept ? 0 : 1;
}
