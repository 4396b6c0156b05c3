// Page ranges: what each text selects, and which texts are none.
#include "engine/pages/PageRange.h"
#include "engine/pdf/Errors.h"
#include "testing/Raised.h"
#include "testing/Workspace.h"

namespace {

QStringList Selected(const string& range, int pageCount) {
    QStringList pages;
    for (const int page : TZQPDFPagesRangeSelector(range, pageCount, 1))
        pages.append(QString::number(page));
    return pages;
}

struct TRangeCase {
    const char* Range;
    int PageCount;
    const char* Pages;
};

class TPageRangeCases : public testing::TestWithParam<TRangeCase> {};

TEST_P(TPageRangeCases, SelectTheirPages) {
    EXPECT_EQ(Selected(QString::fromUtf8(GetParam().Range), GetParam().PageCount).join(u' '),
              QString::fromUtf8(GetParam().Pages));
}

INSTANTIATE_TEST_SUITE_P(
    PageRange, TPageRangeCases,
    testing::Values(TRangeCase{"3", 5, "3"}, TRangeCase{"2-4", 5, "2 3 4"}, TRangeCase{"4-2", 5, "4 3 2"},
                    TRangeCase{"4-", 6, "4 5 6"}, TRangeCase{"", 3, "1 2 3"}, TRangeCase{"  ", 2, "1 2"},
                    TRangeCase{"all", 3, "1 2 3"}, TRangeCase{"odd", 5, "1 3 5"},
                    TRangeCase{"EVEN", 5, "2 4"}, TRangeCase{"last", 5, "5"},
                    TRangeCase{"[numpages]", 4, "4"}, TRangeCase{"[NumPages]-3", 5, "5 4 3"},
                    TRangeCase{"last-1", 3, "3 2 1"}, TRangeCase{"1,1 1", 2, "1 1 1"},
                    TRangeCase{" 1 , 3-4,,2 ", 5, "1 3 4 2"}, TRangeCase{"1 - 3", 5, "1 2 3"},
                    TRangeCase{"4-,1", 5, "4 5 1"},
                    // Pages that aren't there select nothing, and spans are cut to what is.
                    TRangeCase{"9", 5, ""}, TRangeCase{"7-", 5, ""}, TRangeCase{"4-9", 5, "4 5"},
                    TRangeCase{"9-4", 5, "5 4"}, TRangeCase{"7-9", 5, ""}, TRangeCase{"0", 5, ""},
                    TRangeCase{"0-2", 5, "1 2"}, TRangeCase{"99999999999999999999", 5, ""},
                    TRangeCase{"2147483647-2147483648", 5, ""}, TRangeCase{"2-99999999999", 3, "2 3"},
                    TRangeCase{"all odd", 0, ""},
                    // To the end from behind it is nothing, however it is written; numbers count down.
                    TRangeCase{"2-last", 1, ""}, TRangeCase{"2-[numpages]", 1, ""}, TRangeCase{"2-", 1, ""},
                    TRangeCase{"2 - last, 1", 1, "1"}, TRangeCase{"2-last", 2, "2"},
                    TRangeCase{"3-last", 2, ""}, TRangeCase{"last-last", 1, "1"}, TRangeCase{"5-2", 1, ""},
                    TRangeCase{"5-2", 2, "2"}, TRangeCase{"2-5", 1, ""}, TRangeCase{"2-5", 2, "2"},
                    TRangeCase{"1-3, 5, last", 1, "1 1"}, TRangeCase{"1-3, 5, last", 2, "1 2 2"},
                    TRangeCase{"last-1", 2, "2 1"}, TRangeCase{"even", 1, ""}));

class TBadPageRanges : public testing::TestWithParam<const char*> {};

TEST_P(TBadPageRanges, AreNamedInTheError) {
    const string range = QString::fromUtf8(GetParam());
    EXPECT_EQ(RaisedBy([&] { static_cast<void>(Selected(range, 5)); }),
              "Invalid page range \"" + range + "\".");
}

INSTANTIATE_TEST_SUITE_P(PageRange, TBadPageRanges,
                         testing::Values("x", "1-2-3", "-", "-3", "1;2", "1.5", "alle", "3last", "odd-even",
                                         "[numpages", "2-x", "\xD9\xA3", "1--2", "1..3"));

TEST(PageRange, EnumeratesAsTheStampingLoopDoes) {
    const TZQPDFPagesRangeSelector selector("2-3,1", 3, 1);
    QList<int> pages;
    for (auto it = selector.GetEnumerator(); it.MoveNext();)
        pages.append(it.GetCurrent());
    EXPECT_EQ(pages, (QList<int>{2, 3, 1}));
    EXPECT_EQ(DistinctPages(TZQPDFPagesRangeSelector("3,1,3", 3, 1)), (std::vector<int>{1, 3}));
}

} // namespace
