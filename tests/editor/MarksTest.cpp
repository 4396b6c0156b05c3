// What is marked in the text: matching brackets and errors.
#include "EditorFixture.h"
#include "editor/place/BracketMatch.h"
#include "editor/style/JSMemoStyler.h"

namespace {

struct TMatchCase {
    const char* Text; // the bar is the caret
    const char* Pair; // column,row of both brackets; empty: none
};

class BracketTest : public testing::TestWithParam<TMatchCase> {};

std::string Shown(const TBracketMatch& match) {
    if (!match.Found())
        return {};
    return QString("%1,%2 %3,%4").arg(match.X).arg(match.Y).arg(match.OtherX).arg(match.OtherY).toStdString();
}

TEST_P(BracketTest, FindsThePartner) {
    TEditor editor(GetParam().Text);
    TAdvJSMemoStyler styler;
    editor.Styled(styler);
    EXPECT_EQ(Shown(MatchBracket(editor.Memo)), GetParam().Pair) << GetParam().Text;
    editor.Memo.SetStyler(nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Table, BracketTest,
    testing::Values(TMatchCase{"f|(a)", "1,0 3,0"}, TMatchCase{"f(|a)", "1,0 3,0"},
                    TMatchCase{"f(a|)", "3,0 1,0"}, TMatchCase{"f(a)|", "3,0 1,0"},
                    TMatchCase{"(()|)", "2,0 1,0"}, // the one before the caret counts first
                    TMatchCase{"a(|[x(1)](2))", "1,0 11,0"}, TMatchCase{"a([|x(1)](2))", "2,0 7,0"},
                    TMatchCase{"f|(\")\")", "1,0 5,0"},      // in a string
                    TMatchCase{"f(\"|(\")", ""},             // neither there
                    TMatchCase{"f|( /* ) */ )", "1,0 11,0"}, // in a comment
                    TMatchCase{"f|( // )\n)", "1,0 0,1"}, TMatchCase{"{\n/* }\n } */ a\n}|", "0,3 0,0"},
                    TMatchCase{"{|\n{ }\n\n}", "0,0 0,3"}, TMatchCase{"|(]", ""}, TMatchCase{")|", ""},
                    TMatchCase{"(|", ""}, TMatchCase{"|", ""}, TMatchCase{"a|b", ""}));

TEST(BracketMatch, GivesUpFarAway) {
    TAdvJSMemoStyler styler;
    for (const auto& [rows, found] : {std::pair(450, true), {550, false}}) {
        TEditor editor;
        editor.Styled(styler);
        editor.Memo.SetText("{\n" + QString("x;\n").repeated(rows) + "}\n");
        editor.At(0, 0);
        EXPECT_EQ(MatchBracket(editor.Memo).Found(), found) << rows;
        editor.At(1, rows + 1);
        EXPECT_EQ(MatchBracket(editor.Memo).Found(), found) << rows;
        editor.Memo.SetStyler(nullptr);
    }
}

struct TErrorCase {
    int Row, Column, Length;
    int AtRow;
    TErrorMark Mark;
};

TEST(ErrorMarks, StayInTheText) {
    for (const TErrorCase& given :
         {TErrorCase{0, 2, 3, 0, {2, 3}}, TErrorCase{0, 4, 99, 0, {4, 3}}, TErrorCase{0, 7, 1, 0, {7, 1}},
          TErrorCase{0, 99, 5, 0, {7, 1}}, TErrorCase{0, -3, 0, 0, {0, 1}}, TErrorCase{1, 0, 4, 1, {0, 1}},
          TErrorCase{9, 0, 1, 2, {0, 1}}, TErrorCase{-1, 1, 2, 0, {1, 2}}}) {
        TEditor editor("var a =\n\n}");
        editor.Memo.ErrorMarks().Set(given.Row, given.Column, given.Length);
        EXPECT_EQ(editor.Memo.ErrorMarks().Of(given.AtRow), std::vector{given.Mark}) << given.Column;
    }
    TEditor empty;
    empty.Memo.ErrorMarks().Set(0, 0, 1);
    EXPECT_EQ(empty.Memo.Lines().Count(), 0);
}

TEST(ErrorMarks, GoWithAnEditOfTheirLine) {
    TEditor editor("one\ntwo\nthree|");
    TErrorMarks& marks = editor.Memo.ErrorMarks();
    for (const int row : {0, 1, 2})
        marks.Set(row, 0, 2);
    editor.Type("!");
    EXPECT_EQ(marks.Of(2).size(), 0U);
    editor.At(0, 0);
    editor.Type("\n"); // the line goes down as a new one
    EXPECT_EQ(marks.Of(1).size(), 0U);
    EXPECT_EQ(marks.Of(2).size(), 1U); // "two" keeps its mark on the way
    editor.At(3, 2);
    editor.Key(keyRight); // a caret changes nothing
    EXPECT_EQ(marks.Of(2).size(), 1U);
    marks.Clear();
    EXPECT_EQ(marks.Of(2).size(), 0U);
}

} // namespace
