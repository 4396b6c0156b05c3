// Runs, line-start states and colours, judged on small languages.
#include "EditorFixture.h"
#include "editor/style/JSMemoStyler.h"
#include "editor/style/LineStartState.h"
#include "editor/style/MarkerFinder.h"
#include "editor/style/ScanLine.h"

#include <gtest/gtest.h>

#include <random>

namespace {

/// One letter per run: what decides its look.
char KindOf(const TStyle& s) {
    return s.isHighlight   ? 'h'
           : s.isURL       ? 'u'
           : s.isComment   ? 'c'
           : s.isBracket   ? 'b'
           : s.isnumber    ? 'n'
           : s.iskeyWord   ? 'k'
           : s.isdelimiter ? 's'
                           : '.';
}

/// The line with every character replaced by the letter of its run.
std::string Kinds(const QString& line, const TStyleRules& rules, TStyle state = {}) {
    std::string kinds, text;
    for (const TStyleRun& run : RunsOfLine(line, state, rules)) {
        kinds += std::string(size_t(run.Text.size()), KindOf(run.State));
        text += run.Text.toStdString();
    }
    EXPECT_EQ(text, line.toStdString()); // nothing is lost or moved
    return kinds;
}

struct TLanguage {
    TAdvCustomMemoStyler Styler;
    TStyleRules Rules;
    TLanguage() {
        Rules.Styler = &Styler;
        Rules.FUseStyler = true;
    }
    TElementStyle& Add(TStyleType type) {
        TElementStyle& element = Styler.FAllStyles.Add();
        element.SetStyleType(type);
        return element;
    }
    void Symbols(const QString& symbols) { Add(stSymbol).SetSymbols(symbols); }
    void Brackets(QChar start, QChar end) {
        TElementStyle& element = Add(stBracket);
        element.SetBracketStart(start);
        element.SetBracketEnd(end);
    }
    void KeyWords(const QStringList& words) { Add(stKeyword).SetKeyWords(words); }
};

struct TJavaScript {
    TAdvJSMemoStyler Styler;
    TStyleRules Rules;
    TJavaScript() {
        Rules.Styler = &Styler;
        Rules.FUseStyler = true;
    }
};

TEST(ScanLine, JavaScript) {
    TJavaScript js;
    const std::vector<std::pair<const char*, const char*>> cases{
        {"", ""},
        {"if (x) return 1.5;", "kkss.sskkkkkksnnns"},
        {"Function Var", "kkkkkkkkskkk"}, // without regard to case
        {"variable a1", "........s.."},   // neither a prefix nor a digit inside a word
        {"12if", "nnkk"},                 // behind a number a word starts, on purpose
        {"x=+1", ".snn"},                 // a sign belongs to its number
        {"x=-1", ".ssn"},                 // but the minus is a symbol, and symbols come first
        {"1.2.3", "nsnnn"},               // a second stop sends the end back to the first
        {"1e5", "nnn"},
        {"{ }", "ksk"},
        {"--alert", "ss....."}, // the second group never shows
        {"'a' \"b'c\"", "bbbsbbbbb"},
        {"// if", "ccccc"},
        {"a /* if */ b", ".sccccccccs."},
        {"/*a*//*b*/", "cccccccccc"},
        {"/* \" */ if", "cccccccskk"},
        {"\"/*\" x", "bbbbs."},
        {"\"/*\" /* x */", "bbbbssss.sss"}, // the marker in the string hides those behind it, on purpose
        {"\"//\" // x", "bbbbscccc"},       // which isn't so for line comments
        {"'open", "bbbbb"},
    };
    for (const auto& [line, kinds] : cases)
        EXPECT_EQ(Kinds(line, js.Rules), kinds) << line;
    TStyle inside;
    inside.isComment = true;
    EXPECT_EQ(Kinds("a */ if", js.Rules, inside), "ccccskk");
}

TEST(ScanLine, WordsNeedASymbolBeforeThem) {
    TLanguage bare;
    bare.KeyWords({"if"});
    EXPECT_EQ(Kinds("xif", bare.Rules), ".kk"); // without symbols every place is a word start
    TLanguage blankless;
    blankless.KeyWords({"if"});
    blankless.Symbols(";");
    EXPECT_EQ(Kinds("if if;if", blankless.Rules), "kk...skk"); // the blank stays ahead of the word
    blankless.Rules.FCaseSensitive = true;
    EXPECT_EQ(Kinds("If;if", blankless.Rules), "..skk");
    blankless.Rules.FUseStyler = false;
    EXPECT_EQ(RunsOfLine(u"if", {}, blankless.Rules).size(), 1u);
}

TEST(ScanLine, Brackets) {
    struct TCase {
        const char16_t *Literal, *Escape, *Line;
        const char* Kinds;
    };
    const std::vector<TCase> cases{
        {u"", u"", u"\"a\\\"b\"", "bbbb.b"},
        {u"\\", u"", u"\"a\\\"b\" ;", "bbbbbb.s"}, // the literal and the character behind it pass unlooked at
        {u"", u"\\", u"\"a\\\"b\" ;", "bbbbbb.s"},
        {u"", u"\\", u"\"a\\\\\" ;", "bbbbbbb"}, // an escape isn't escaped itself, on purpose
        {u"", u"\\", u"\\\"a", "..."},           // nor opens one behind an escape
        {u"", u"", u"$ab cd", "bbbb.."},         // an end of NUL: up to the next word break
        {u"", u"", u"$a;if", "bbb.."},
        {u"", u"", u"#ab cd", "bbbb.."}, // an end of blank
    };
    for (const TCase& c : cases) {
        TLanguage language;
        language.Brackets(u'"', u'"');
        language.Brackets(u'$', QChar());
        language.Brackets(u'#', u' ');
        language.Symbols(";");
        language.Styler.FLiteral = QString::fromUtf16(c.Literal);
        if (*c.Escape)
            language.Styler.FEscapeChar = QString::fromUtf16(c.Escape);
        const QString line = QString::fromUtf16(c.Line);
        EXPECT_EQ(Kinds(line, language.Rules), c.Kinds) << line.toStdString();
    }
}

TEST(ScanLine, HexNumbers) {
    TLanguage language;
    language.Symbols(" ;");
    language.Styler.FHexIdentifier = "0X";
    EXPECT_EQ(Kinds("0xFF;0XAg;1F", language.Rules), "nnnnsnnn.sn.");
    // What may begin a number holds the prefix's letters, and the digits behind it are those of hex.
    EXPECT_EQ(Kinds("x1;", language.Rules), "..s");
}

TEST(ScanLine, Urls) {
    TJavaScript js;
    js.Rules.FUrlAware = true;
    EXPECT_EQ(Kinds("x www.a.b x", js.Rules), ".suuuuuuus.");
    EXPECT_EQ(Kinds("\"http://a/b\";", js.Rules), "buuuuuuuuuubs");
    EXPECT_EQ(Kinds("// ab, www.a */ if", js.Rules), "cccccccuuuuucccccc");
    EXPECT_EQ(Kinds("WWW.A", js.Rules), "uuuuu");
    js.Styler.FLiteral = "\\"; // the character behind the literal stays in the run at hand
    std::vector<QString> pieces;
    for (const QStringView piece : js.Rules.SplitForUrls(u"a\\ b  c,"))
        pieces.push_back(piece.toString());
    EXPECT_EQ(pieces, (std::vector<QString>{"a\\ b", "  ", "c", ","}));
}

TEST(ScanLine, ElementsOfCommentsComeBehindTheStylersOwnMarkers) {
    TLanguage language;
    language.Styler.FMultiCommentLeft = "(*";
    language.Styler.FMultiCommentRight = "*)";
    TElementStyle& braces = language.Add(stComment);
    braces.SetCommentLeft("{");
    braces.SetCommentRight("}");
    EXPECT_EQ(Kinds("{a} b", language.Rules), "ccc..");
    EXPECT_EQ(Kinds("{a} (*b", language.Rules), "....ccc"); // the kind that is tried first hides the other
    int length = 0;
    EXPECT_EQ(language.Styler.FindCommentStart(u"{ (*", length), 3);
    EXPECT_EQ(length, 2);
}

TEST(MarkerFinder, AgreesWithASearchFromScratch) {
    std::mt19937 random(7);
    const auto text = [&random](int most) {
        QString s;
        for (int n = int(random() % unsigned(most)); n > 0; --n)
            s += QChar(u'a' + char16_t(random() % 2));
        return s;
    };
    for (int round = 0; round < 2000; ++round) {
        TAdvCustomMemoStyler styler;
        styler.FMultiCommentLeft = text(4) + u'a';
        TElementStyle& element = styler.FAllStyles.Add();
        element.SetStyleType(stComment);
        element.SetCommentLeft(text(3) + u'b');
        const QString line = text(14);
        QString passed;
        TMarkerFinder finder(styler.CommentStarts());
        for (qsizetype at = 0; at < line.size(); ++at) {
            int length = 0, expected = 0;
            const int found = finder.Find(passed, line, at, length);
            ASSERT_EQ(found, styler.FindCommentStart(passed + line.mid(at), expected));
            ASSERT_TRUE(found == 0 || length == expected);
            if (random() % 3)
                passed += line[at];
        }
    }
}

TEST(LineStartState, CarriesCommentsAndBracketsAcrossLines) {
    TJavaScript js;
    TAdvMemoStrings lines;
    TLineStates states;
    const auto kind = [&](int line) { return KindOf(states.LineStartState(line, lines, js.Rules)); };
    lines.SetText(u"a /* b\n\n c */ d\n'open\nmore' x\n// don't\nx \"/*\"\nend /*/\nx");
    std::string kinds;
    for (int i = 0; i < lines.Count(); ++i)
        kinds += kind(i);
    EXPECT_EQ(kinds, ".cc.b...c");
    EXPECT_EQ(states.LineStartState(4, lines, js.Rules).index, 2); // which brackets, for their colour
    js.Styler.FMultiCommentLeft.clear(); // without such comments brackets never cross lines
    states.Reset();
    EXPECT_EQ(kind(4), '.');
    EXPECT_EQ(kind(99), '.');
    lines.Clear();
    EXPECT_EQ(kind(3), '.');
}

TEST(LineStartState, ABracketThatEndsWithABlankEndsWithItsLine) {
    TLanguage language;
    language.Brackets(u'#', u' ');
    language.Styler.FMultiCommentLeft = "{";
    language.Styler.FMultiCommentRight = "}";
    TAdvMemoStrings lines;
    lines.SetText(u"#a\nb");
    TLineStates states;
    EXPECT_FALSE(states.LineStartState(1, lines, language.Rules).isBracket);
}

TEST(LineStartState, KeepsCheckpointsAndForgetsThoseBehindAChange) {
    TJavaScript js;
    TAdvMemoStrings lines;
    for (int i = 0; i < 100; ++i)
        lines.Add("x");
    TLineStates states;
    (void)states.LineStartState(99, lines, js.Rules);
    std::vector<int> kept;
    for (int i = 0; i < 100; ++i) {
        if (lines.GetLineProp(i)->CachedStyle)
            kept.push_back(i);
    }
    EXPECT_EQ(kept, (std::vector<int>{0, 20, 40, 60, 80, 99}));
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const int row = int(random() % 100);
        static const char* const Texts[] = {"x", "/*", "*/", "'", ""};
        lines.Put(row, Texts[random() % 5]);
        states.Invalidate(row);
        for (int asked = 0; asked < 3; ++asked) {
            const int line = int(random() % 100);
            TLineStates fresh; // trusts nothing that was kept
            TAdvMemoStrings copy;
            copy.Assign(lines);
            ASSERT_EQ(states.LineStartState(line, lines, js.Rules),
                      fresh.LineStartState(line, copy, js.Rules));
        }
    }
}

TEST(RunLook, FirstMatchWins) {
    TJavaScript js;
    const TRunLook base{1, 2, 0};
    const auto look = [&](void (*set)(TStyle&)) {
        TStyle state;
        set(state);
        return LookOf(state, js.Rules, base);
    };
    EXPECT_EQ(look([](TStyle&) {}), base);
    EXPECT_EQ(look([](TStyle& s) { s.isComment = s.isBracket = true; }),
              (TRunLook{12632256, clWhite, fsItalic}));
    EXPECT_EQ(look([](TStyle& s) { s.isComment = s.isURL = true; }), (TRunLook{0xFF0000, 2, fsUnderline}));
    EXPECT_EQ(look([](TStyle& s) { s.isHighlight = s.isURL = true; }), (TRunLook{clWhite, 255, fsBold}));
    EXPECT_EQ(look([](TStyle& s) { s.iskeyWord = true, s.index = 1; }),
              (TRunLook{0x008000, clWhite, fsBold}));
    js.Styler.FNumberStyle.BkColor = clNone;
    EXPECT_EQ(look([](TStyle& s) { s.isnumber = true; }).BkColor, 2u);
}

TEST(Styler, LoadedDropsContentsThatNobodyClaimed) {
    TLanguage language;
    language.Symbols(";");
    EXPECT_TRUE(language.Styler.FAllStyles.IsWordBoundary(u';'));
    language.Styler.Loaded();
    EXPECT_EQ(language.Styler.FAllStyles.Count(), 0);
    TAdvJSMemoStyler js;
    js.Loaded();
    EXPECT_EQ(js.FAllStyles.Count(), 5);
}

TEST(TodaysLanguage, NumbersOfBothKinds) {
    TAdvJSMemoStyler styler;
    styler.UseTodaysLanguage();
    TEditor editor("x = 0x1AfC, 9.5;");
    editor.Styled(styler);
    std::vector<std::string> numbers;
    for (const TStyleRun& run : editor.Memo.RunsOf(0)) {
        if (run.State.isnumber)
            numbers.push_back(run.Text.toStdString());
    }
    EXPECT_EQ(numbers, (std::vector<std::string>{"0x1AfC", "9.5"}));
}

TEST(TodaysLanguage, EscapesExpressionsAndTextOfSeveralLines) {
    struct {
        const char* Text;
        std::vector<const char*> Texts; // what is coloured as text or as an expression
    } const cases[] = {
        {"f('a\\'b', \"\\\\\")", {"'a\\'b'", "\"\\\\\""}},
        {"x = /[\"/*]\\/'/gi; y", {"/[\"/*]\\/'/gi"}},
        {"a = b / c / d", {}},
        {"return /a/.test(b) / 2", {"/a/"}},
        {"(a) / 2 / 'x'", {"'x'"}},
        {"f(/ab", {"/ab"}},
        {"/x/.y", {"/x/"}},
        {"// /a/", {}},
        {"x = `a\nb` + c", {"`a", "b`"}},
        {"x = 'a\nb", {"'a"}}, // such text ends with its line
        {"x = /'/; /*\n'a'*/ 'b'", {"/'/", "'b'"}},
    };
    for (const auto& test : cases) {
        TAdvJSMemoStyler styler;
        styler.UseTodaysLanguage();
        TEditor editor(test.Text);
        editor.Memo.Rules().FCaseSensitive = true;
        editor.Styled(styler);
        std::vector<std::string> texts;
        for (int row = 0; row < editor.Memo.Lines().Count(); ++row) {
            bool goesOn = false;
            for (const TStyleRun& run : editor.Memo.RunsOf(row)) {
                const bool text = run.State.isBracket && !run.State.isComment;
                if (text && goesOn)
                    texts.back() += run.Text.toStdString();
                else if (text)
                    texts.push_back(run.Text.toStdString());
                goesOn = text;
            }
        }
        // A closing quote is a run of its own.
        std::string all, wanted;
        for (const std::string& text : texts)
            all += text;
        for (const char* text : test.Texts)
            wanted += text;
        EXPECT_EQ(all, wanted) << test.Text;
    }
}

} // namespace
