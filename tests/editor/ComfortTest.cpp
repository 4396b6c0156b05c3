// What the switches of TMemoSettings turn on, and that without them the rule holds.
#include "EditorFixture.h"
#include "editor/style/JSMemoStyler.h"

namespace {

struct TComfortable : TEditor {
    TAdvJSMemoStyler Styler;
    TComfortable(const char* text, bool comforts) {
        Styler.UseTodaysLanguage();
        Memo.Rules().FCaseSensitive = true;
        Styled(Styler);
        Memo.Folding().SetEnabled(true);
        if (comforts) {
            Memo.Settings.TurnOnComforts();
            Memo.KeepExactHistory(100);
        }
        Given(text);
    }
};

TEST(Comforts, EachIsASwitch) {
    struct {
        const char* Text;
        std::function<void(TEditor&)> Do;
        const char* Rule;
        const char* With;
    } const cases[] = {
        {"ab cd|",
         [](auto& e) {
             e.Select({1, 0, 2, 0}), e.Key(keyTab);
         },
         "ab    | cd", "    ab| cd"},
        {"a {|", [](auto& e) { e.Type("\nb\n}"); }, "a {\nb\n}|", "a {\n    b\n}|"},
        {"x|", [](auto& e) { e.Type("("); }, "x(|", "x(|)"},
        {"x|", [](auto& e) { e.Type("('a')"); }, "x('a')|", "x('a')|"},
        {"x|", [](auto& e) { e.Type("(["), e.Key(keyBackspace); }, "x(|", "x(|)"},
        {"it|", [](auto& e) { e.Type("'s"); }, "it's|", "it's|"},
        {"x = /[|", [](auto& e) { e.Type("\"('"); }, "x = /[\"('|", "x = /[\"('|"}, // an expression
        {"// |", [](auto& e) { e.Type("(\""); }, "// (\"|", "// (\"|"},
        {"|", [](auto& e) { e.Type("f(){\n"); }, "f(){\n|", "f(){\n    |\n}"},
        {"|", [](auto& e) { e.Type("f(){\ng();\n}"); }, "f(){\ng();\n}|", "f(){\n    g();\n}|"},
        {"    a b|", [](auto& e) { e.Key(keyHome); }, "|    a b", "    |a b"},
        {"    |a", [](auto& e) { e.Key(keyHome); }, "|    a", "|    a"},
        {"a|b cd", [](auto& e) { e.Key(keyDelete, ssCtrl); }, "a| cd", "a|cd"},
        {"a|  \nb", [](auto& e) { e.Key(keyRight); }, "a  \n|b", "a | \nb"},
    };
    for (const auto& test : cases) {
        for (const bool comforts : {false, true}) {
            TComfortable editor(test.Text, comforts);
            test.Do(editor);
            EXPECT_EQ(editor.Shown(), comforts ? test.With : test.Rule) << test.Text;
        }
    }
}

TEST(Comforts, KeysAtAClosedFoldOpenItAndDeleteNothing) {
    struct {
        int X, Y;
        int Key;
        TShiftState Shift;
        TSelectionRange Selection;
    } const cases[] = {{3, 0, keyDelete, 0, {}},
                       {3, 0, keyDelete, ssCtrl, {}},
                       {0, 3, keyBackspace, 0, {}},
                       {0, 3, keyBackspace, ssCtrl, {}},
                       {0, 3, keyDelete, 0, {1, 0, 0, 3}}};
    for (const auto& test : cases) {
        TComfortable editor("a {\n    b\n}\nc|", /*comforts=*/true);
        editor.Memo.Folding().CollapseNode(0);
        ASSERT_FALSE(editor.Memo.Folding().IsVisible(1));
        editor.At(test.X, test.Y);
        if (test.Selection != TSelectionRange())
            editor.Select(test.Selection);
        editor.Key(test.Key, test.Shift);
        EXPECT_EQ(editor.Lines(), "a {\n    b\n}\nc");
        EXPECT_TRUE(editor.Memo.Folding().IsVisible(1));
        editor.Key(test.Key, test.Shift); // now it does its work
        EXPECT_NE(editor.Lines(), "a {\n    b\n}\nc");
    }
}

TEST(Comforts, ScriptsArriveAsTyped) {
    for (const char* script :
         {"for (var i = 0; i < 3; i++) { f(\"a, b\"); }",
          "var a = [\"x\", 'y', {b: `c${1}`}];\nif (a) {\n    if (!b) {\n        g(/[\"'(]/.test(s), "
          "\"\\\"\");\n    }\n} else {\n    x = (1 + 2) / 3;\n}\n// don't (or do"}) {
        TComfortable editor("|", /*comforts=*/true);
        for (const QString& line : QString(script).split('\n')) {
            if (editor.Memo.Caret().Y() + editor.Memo.Caret().X() > 0)
                editor.Type("\n");
            editor.Type(line.trimmed().toUtf8());
        }
        EXPECT_EQ(editor.Lines(), script);
    }
}

TEST(Comforts, AWholeTextShowsItsLastLineEnd) {
    TEditor editor;
    for (const char* text : {"", "a", "a\n", "a\n\nb\n\n"}) {
        editor.Memo.SetWholeText(text);
        EXPECT_EQ(editor.Memo.Lines().Count(), QString(text).count('\n') + 1);
        EXPECT_EQ(editor.Memo.WholeText(), text);
        EXPECT_FALSE(editor.Memo.CanUndo());
    }
}

} // namespace
