// The number macro, its formats, the list of numbers and the comma format.
#include "base/Exceptions.h"
#include "bates/BatesDictionary.h"
#include "bates/CommaText.h"
#include "bates/NumberList.h"
#include "bates/SeriesMacro.h"
#include "testing/Workspace.h"

namespace {

string Number(const string& line, bool current = true) {
    string result = "before"; // replaced by every format but the upper case Roman one
    TZQPDFBatesDictionary::GetBates(line, current, result);
    return result;
}

/// The list after a scheme with these header texts had this one.
QStringList Filled(const QStringList& texts, const QStringList& before = {}) {
    TZQPDFBatesDictionary store;
    store.CurrScheme.FooterRight = texts.value(0);
    store.CurrScheme.HeaderLeft = texts.value(1); // stands in front of the footer
    store.BatesStrl = before;
    store.FillBatesStrl();
    return store.BatesStrl;
}

} // namespace

TEST(BatesNumbers, ALineOrMacroIsReadWithDefaultsForWhatCannotBe) {
    const struct {
        const char* Text;
        TBates Bates;
    } cases[] = {
        {"<BN:2:8:5:1>=17", {2, 8, 5, true, 17}},
        {"<BN:2:8:5:1>", {2, 8, 5, false, 5}}, // its last part is "1>"
        {"????3,4,5,1>=9", {3, 4, 5, true, 9}},
        {"<BN:0 9 3 0>=4", {0, 9, 3, false, 4}},
        {"<BN:x:7::1>=y", {0, 7, 1, true, 1}},
        {"<BN:0:6:-3:2>=-1", {0, 6, -3, false, -1}},
        {"<BN:0:6:2147483648:1>=99999999999", {0, 6, 1, true, 1}},
        {"<B", {}},
        {"", {}},
    };
    for (const auto& c : cases) {
        TBates bates{9, 9, 9, true, 9};
        TZQPDFBatesDictionary::StrToBates(c.Text, bates);
        EXPECT_EQ(bates, c.Bates) << c.Text;
    }
}

TEST(BatesNumbers, Formats) {
    const struct {
        const char* Line;
        string Shown;
    } cases[] = {
        {"<BN:0:6:1:0>=1", "000001"},
        {"<BN:0:6:1:0>=1234567", "1234567"},
        {"<BN:0:6:1:0>=-5", "-000005"},
        {"<BN:0:3:1:0>=-2147483648", "-2147483648"},
        {"<BN:0:0:1:0>=42", "42"},
        {"<BN:0:-4:1:0>=42", "42"},
        {"<BN:9:4:1:0>=42", "0042"},
        {"<BN:0:2000000000:1:0>=7", string(254, '0') + "7"},
        {"<BN:1:6:1:0>=0", ""},
        {"<BN:1:6:1:0>=26", "z"},
        {"<BN:1:6:1:0>=27", "aa"},
        {"<BN:1:6:1:0>=53", "ba"},
        {"<BN:2:6:1:0>=702", "ZZ"},
        {"<BN:2:6:1:0>=703", "AAA"},
        {"<BN:1:6:1:0>=2147483647", "fxshrxw"},
        {"<BN:3:6:1:0>=3999", "mmmcmxcix"},
        {"<BN:3:6:1:0>=-1", ""},
        {"<BN:4:6:1:0>=4000", "beforeMMMM"},
        {"<BN:3:6:1:0>=2147483647", "2147483647"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Number(c.Line), c.Shown) << c.Line;
    EXPECT_EQ(Number("<BN:0:3:5:0>=17", /*current=*/false), "005");
    EXPECT_EQ(Number("<BN:0:3:5:0>", /*current=*/true), "005");
}

TEST(BatesNumbers, TheListHoldsTheValidMacrosOfTheTexts) {
    const struct {
        QStringList Texts;
        QStringList Lines;
    } cases[] = {
        {{"<BN:0:6:9:0>", "a <bn:1:6:1:1> <BN:1:6:1:1>"}, {"<BN:1:6:1:1>=1", "<BN:0:6:9:0>=9"}},
        {{"<BN:0:6:1:0 <BN:0:6:2:0>", "<BN:1:1:1:0>x<BN:2"}, {"<BN:1:1:1:0>=1"}},
        {{"<BN:0,6,1,0><BN:0 6 4 0>"}, {"<BN:0,6,1,0>=1", "<BN:0 6 4 0>=4"}},
        {{"<BN:7:6:1:0><BN:0:6:1><BN:0:x:1:0><BN:0:6:1:2><BN:00:6:1:0><BN:0:6:1:0:0><BN:0:6:9999999999:0>"},
         {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Filled(c.Texts), c.Lines);
}

TEST(BatesNumbers, NumbersGoOnButForTheFirstOfTheOldList) {
    const QStringList both = {"<BN:0:6:1:0> <BN:2:6:1:0>"};
    EXPECT_EQ(Filled(both, {"<BN:0:6:1:0>=50", "<BN:2:6:1:0>=50"}),
              QStringList({"<BN:0:6:1:0>=1", "<BN:2:6:1:0>=50"}));
    EXPECT_EQ(Filled(both, {"x", "<bn:0:6:1:0>=50", "<BN:2:6:1:0>=-4"}),
              QStringList({"<BN:0:6:1:0>=50", "<BN:2:6:1:0>=1"}));
    EXPECT_EQ(Filled(both, {"<BN:0:6:1:0>=2", "<BN:0:6:1:0>=3"}),
              QStringList({"<BN:0:6:1:0>=1", "<BN:2:6:1:0>=1"}));

    TZQPDFBatesDictionary store;
    store.BatesStrl = {"<BN:0:6:3:1>=8", "<BN:0:6:1:0>=8", "none"};
    NumberList::Advance(store.BatesStrl, 1);
    EXPECT_EQ(store.BatesStrl, QStringList({"<BN:0:6:3:1>=10", "<BN:0:6:1:0>=9", "none"}));
    store.SetStartToCurNum();
    EXPECT_EQ(store.BatesStrl, QStringList({"<BN:0:6:3:1>=3", "<BN:0:6:1:0>=1", "none"}));
    QStringList last = {"<BN:0:6:1:1>=2147483646"};
    EXPECT_THROW(NumberList::Advance(last, 1), Exception);
}

TEST(BatesNumbers, ThePreviewShowsStartsAndUpperCaseRomanFollowsTheLineBefore) {
    TZQPDFBatesDictionary store;
    store.BatesStrl = {"<BN:4:6:3:0>=9", "<BN:0:3:5:0>=9", "<BN:4:6:2:0>=9"};
    EXPECT_EQ(store.ParseTextTest("<bn:4:6:3:0>-<BN:0:3:5:0>-<BN:4:6:2:0>-<BN:1:1:1:0>"),
              "III-005-005II-<BN:1:1:1:0>");
    EXPECT_EQ(store.ParseTextTest("<BN:4:6:2:0>"), "005II"); // also where the other stands in no text
    EXPECT_EQ(store.ParseTextTest("[page]/[numpages] [filename][title]"), "1/NNN File Name.pdf");
}

TEST(BatesNumbers, HostileTextsStayWithinBounds) {
    string many;
    for (int i = 0; i < 100'000; ++i)
        many += QStringLiteral("<BN:4:6:%1:0>").arg(i);
    TZQPDFBatesDictionary store;
    store.CurrScheme.HeaderLeft = many;
    store.FillBatesStrl();
    EXPECT_EQ(store.BatesStrl.size(), BatesLimits::Macros);
    EXPECT_LE(store.ParseTextTest(string("<BN:4:6:999:0>").repeated(1000)).size(), BatesLimits::ExpandedText);
}

TEST(CommaText, ReadsWhatItWritesAndMore) {
    const struct {
        const char* Text;
        QStringList Items;
        const char* Written = nullptr; // where it isn't the text
    } cases[] = {
        {"", {}},
        {R"("")", {""}},
        {"a,b", {"a", "b"}},
        {"a,,b,", {"a", "", "b", ""}},
        {" a  b ,\tc ", {"a", "b", "c"}, "a,b,c"},
        {R"("<BN:0 6,1,0>=1","a ""b""")", {"<BN:0 6,1,0>=1", "a \"b\""}},
        {R"("open , end)", {"open , end"}, R"("open , end")"},
        {R"("a"b)", {"a", "b"}, "a,b"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FromCommaText(QString::fromUtf8(c.Text)), c.Items) << c.Text;
        EXPECT_EQ(ToCommaText(c.Items), QString::fromUtf8(c.Written != nullptr ? c.Written : c.Text));
    }
}

TEST(SeriesMacroTest, StandsForTheNextNumberWhereItIsOne) {
    const struct {
        const char* Text;
        const char* Series; ///< separated by "|"
        const char* Shown;  ///< where each series is at 7
    } cases[] = {
        {"Ex [number:EXH:6].", "EXH", "Ex 000007."},
        {"[NUMBER:a b]-[Number:a b:2]", "a b", "7-07"},
        {"[number:A][number:B:3]", "A|B", "7007"},
        {"[number:a][number:A]", "a|A", "77"},
        {"[number:A:300]", "A", nullptr}, // as 255
        {"[number:]", "", "[number:]"},
        {"[number: A]", "", "[number: A]"},
        {"[number:A:0]", "", "[number:A:0]"},
        {"[number:A:x]", "", "[number:A:x]"},
        {"[number:A", "", "[number:A"},
        {"[[number:A]]", "A", "[7]"},
    };
    for (const auto& c : cases) {
        const QStringList series = SeriesMacro::SeriesOf({c.Text});
        EXPECT_EQ(series.join(u'|'), c.Series) << c.Text;
        QMap<string, qint64> numbers;
        for (const string& name : series)
            numbers.insert(name, 7);
        EXPECT_EQ(SeriesMacro::Replace(c.Text, numbers),
                  c.Shown != nullptr ? string(c.Shown) : string(254, u'0') + u'7')
            << c.Text;
    }
}
