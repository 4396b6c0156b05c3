// The line store without a control, and the cutting of wrapped lines.
#include "base/Exceptions.h"
#include "editor/text/WordWrap.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

std::vector<std::string> LinesOf(const TStringList& list) {
    std::vector<std::string> lines;
    for (int i = 0; i < list.Count(); ++i)
        lines.push_back(list.Get(i).toStdString());
    return lines;
}

std::vector<int> LengthsOf(const TAdvMemoStrings& store) {
    std::vector<int> lengths;
    for (int i = 0; i < store.ListLengths().Count(); ++i)
        lengths.push_back(store.ListLengths()[i]);
    return lengths;
}

TEST(IntList, FindsByBinarySearchInAscendingListsOnly) {
    const TIntList list{1, 4, 9};
    EXPECT_EQ(list.IndexOf(4), 1);
    EXPECT_EQ(list.IndexOf(5), -1);
    const TIntList mixed{9, 4, 1};
    EXPECT_EQ(mixed.IndexOf(9), -1); // there, but not where an ascending list has it
    EXPECT_THROW((void)list.GetInteger(3), Exception);
}

TEST(LineStore, StandsAlone) {
    TAdvMemoStrings store;
    TLineObject mark;
    EXPECT_EQ(store.AddObject("a\tb", &mark), 0);
    EXPECT_EQ(store.Add("c\r\nd"), 1); // as it stands
    store.Insert(0, "x\r\ny");
    EXPECT_THAT(LinesOf(store), ElementsAre("x\r\ny", "a\tb", "c\r\nd"));
    EXPECT_THAT(LengthsOf(store), ElementsAre(4, 3, 4));
    EXPECT_EQ(store.GetObject(1), &mark);
    EXPECT_EQ(store.GetLineProp(1)->FObject, &mark);
    EXPECT_EQ(store.GetLineProp(0), nullptr); // inserted lines get theirs on demand
    store.PutObject(0, &mark);
    EXPECT_EQ(store.CreateLineProp(0).FObject, &mark);
    EXPECT_EQ(store.GetObject(7), nullptr);
    store.PutObject(-1, &mark);
    store.Delete(9);
    store.Delete(-1);
    store.Delete(1);
    EXPECT_THAT(LinesOf(store), ElementsAre("x\r\ny", "c\r\nd"));
    store.Put(1, "longer"); // without a control the lengths stay behind, on purpose
    EXPECT_THAT(LengthsOf(store), ElementsAre(4, 4));
    store.Clear();
    EXPECT_EQ(store.Count() + store.ListLengths().Count(), 0);
}

TEST(LineStore, AddStringsNeedsAControlAndAssignDoesNot) {
    TStringList source;
    TLineObject mark;
    source.AddObject("one", &mark);
    source.Add("two");
    TAdvMemoStrings store;
    store.AddStrings(source);
    EXPECT_EQ(store.Count(), 0);
    store.Assign(source);
    EXPECT_THAT(LinesOf(store), ElementsAre("one", "two"));
    EXPECT_EQ(store.GetObject(0), &mark);
}

TEST(LineStore, EventsComeOncePerBracket) {
    TAdvMemoStrings store;
    std::string seen;
    store.OnChanging = [&] { seen += '<'; };
    store.OnChange = [&] { seen += '>'; };
    store.Add("a");
    store.BeginUpdate();
    store.BeginUpdate();
    EXPECT_EQ(store.LockCount(), 1); // counts the outermost bracket
    store.Add("b");
    store.Delete(0);
    store.EndUpdate();
    store.EndUpdate();
    EXPECT_EQ(seen, "<><>");
    EXPECT_EQ(store.LockCount(), 0);
}

TEST(LineStore, ReadsAnyLineEndAndMark) {
    const std::vector<std::pair<QByteArray, std::vector<std::string>>> cases{
        {"", {}},
        {"a", {"a"}},
        {"a\n", {"a"}},
        {"a\r\nb\rc\n\nd", {"a", "b", "c", "", "d"}},
        {"\xEF\xBB\xBF\xC3\xA4\n", {"\xC3\xA4"}},
        {QByteArray("\xFF\xFE\xE4\0\n\0", 6), {"\xC3\xA4"}},
    };
    for (const auto& [bytes, lines] : cases) {
        TAdvMemoStrings store;
        QBuffer in;
        in.setData(bytes);
        in.open(QIODevice::ReadOnly);
        store.LoadFromStream(in);
        EXPECT_EQ(LinesOf(store), lines) << bytes.toHex().toStdString();
    }
}

TEST(LineStore, SavingToAFileStripsBlanksAndToAStreamDoesNot) {
    const QTemporaryDir folder;
    TAdvMemoStrings store;
    store.Add("a  ");
    store.Add("  b");
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    store.SaveToStream(out);
    EXPECT_EQ(out.data(), "a  \n  b\n");
    store.SaveToFile(folder.filePath("t.js"));
    EXPECT_EQ(store.Get(0), "a"); // the lines themselves change
    QFile file(folder.filePath("t.js"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "a\n  b\n");
    EXPECT_THROW(store.LoadFromFile(folder.filePath("absent")), EFileError);
    EXPECT_EQ(store.Count(), 2);
    EXPECT_THROW(store.SaveToFile(folder.filePath("absent/t.js")), EFileError);
}

TEST(WordWrap, CutsBehindTheLastBlankThatLeavesThePartShorterThanTheLimit) {
    struct TCase {
        const char* Line;
        int Limit;
        std::vector<std::string> Rows;
    };
    const std::vector<TCase> cases{
        {"12345", 5, {"12345"}},
        {"123456", 5, {"12345", "6"}},
        {"123456789012", 5, {"12345", "67890", "12"}}, // one long word: hard, and again
        {"abc def", 5, {"abc ", "def"}},
        {"abcd ef", 5, {"abcd ", "ef"}}, // the word with its blank fills the limit: hard cut
        {"ab cd ef gh", 7, {"ab cd ", "ef gh"}},
        {"ab cdefghijk", 5, {"ab ", "cdefg", "hijk"}}, // a word that doesn't fit goes back
        {"      x", 4, {"   ", "   x"}},
        {"a b", 1, {"a", " ", "b"}},
    };
    for (const TCase& c : cases) {
        TAdvMemoStrings store;
        store.Add(c.Line);
        TWordWrap wrap;
        wrap.Wrap(store, c.Limit);
        EXPECT_EQ(LinesOf(store), c.Rows) << c.Line;
        ASSERT_EQ(wrap.Rows().Count(), int(c.Rows.size()) - 1);
        for (int row = 0; row < store.Count(); ++row)
            EXPECT_EQ(store.GetLineProp(row) && store.GetLineProp(row)->Wrapped, row > 0) << c.Line;
        EXPECT_EQ(LengthsOf(store).size(), c.Rows.size());
        wrap.Unwrap(store);
        EXPECT_THAT(LinesOf(store), ElementsAre(c.Line));
        EXPECT_THAT(LengthsOf(store), ElementsAre(int(strlen(c.Line))));
    }
}

TEST(WordWrap, WrappingLosesMarksAndUnwrappingKeepsThoseOfTheFirstPiece) {
    TAdvMemoStrings store;
    TLineObject mark;
    store.AddObject("aaa bbb", &mark);
    store.Add("c");
    store.GetLineProp(1)->BreakPoint = true;
    TWordWrap wrap;
    wrap.Wrap(store, 0); // even where nothing can be cut
    EXPECT_EQ(store.GetLineProp(1), nullptr);
    store.NeedLineProp(1).BreakPoint = true;
    wrap.Wrap(store, 5);
    EXPECT_THAT(LinesOf(store), ElementsAre("aaa ", "bbb", "c"));
    EXPECT_EQ(store.GetObject(0), nullptr);
    EXPECT_EQ(store.GetLineProp(2), nullptr);
    store.NeedLineProp(0).Bookmark = true;
    store.NeedLineProp(2).FObject = &mark;
    wrap.Unwrap(store);
    EXPECT_TRUE(store.GetLineProp(0)->Bookmark);
    EXPECT_EQ(store.GetObject(1), &mark);
}

TEST(WordWrap, AContinuationWithoutALineBeforeItOnlyLosesItsMark) {
    TAdvMemoStrings store;
    store.Add("aaa bbb");
    TWordWrap wrap;
    wrap.Wrap(store, 5);
    store.Delete(0);
    wrap.Unwrap(store);
    EXPECT_THAT(LinesOf(store), ElementsAre("bbb"));
    EXPECT_FALSE(store.GetLineProp(0)->Wrapped);
}

} // namespace
