// What contents leave open, and what must stand behind them.
#include "engine/content/ContentScan.h"

#include <gtest/gtest.h>

namespace {

TEST(TContentScan, FindsWhatIsOpen) {
    struct TCase {
        std::string Content;
        std::string Closing;
        std::vector<size_t> Excess;
    };
    const TCase cases[] = {
        {"", "", {}},
        {"q 1 0 0 1 0 0 cm BT (x) Tj ET Q", "", {}},
        {"1 0 0 -1 0 842 cm", "", {}},
        {"q q 0 g Q", "Q\n", {}},
        {"q BT (a) Tj", "ET\nQ\n", {}},
        {"BT /Span <</ActualText (x)>> BDC (a) Tj ET", "EMC\n", {}},
        {"/P BMC q BT", "ET\nQ\nEMC\n", {}},
        {"0 0 m 10 10 l", "n\n", {}},
        {"0 0 10 10 re f", "", {}},
        {"Q 0 g Q", "", {0, 6}},
        {"q Q Q q", "Q\n", {4}},
        // Words that only look like operators
        {"(q BT \\) q) Tj % q BT\n", "", {}},
        {"<71> Tj [(q) 3 (q)] TJ /q gs /BT 1 Tf", "", {}},
        {"BI /W 1 /H 1 /BPC 8 /CS /G ID q Q EIQ q\x01 EI q", "Q\n", {}},
        {"BI /W 1 /H 1 ID \xff EI \x02\x03 q q EI\nQ", "", {31}},
        // Cut off
        {"q (unfinished (q", "))\nQ\n", {}},
        {"BI /W 9 ID abc q", "EI\n", {}},
        {"q <41", ">\nQ\n", {}},
        {"q <", ">\nQ\n", {}},
    };
    for (const TCase& one : cases) {
        const TContentBalance balance = ScanContent(one.Content);
        EXPECT_EQ(balance.Closing, one.Closing) << one.Content;
        EXPECT_EQ(balance.ExcessRestores, one.Excess) << one.Content;
    }
}

TEST(TContentScan, DeepNestingTakesNoTime) {
    std::string content;
    std::string closing;
    for (const char* word : {"BT ", "q ", "BMC "})
        for (int i = 0; i < 200'000; ++i)
            content += word;
    for (int i = 0; i < 400'000; ++i)
        closing += "ET ";
    EXPECT_EQ(ScanContent(content + closing).Closing.size(),
              200'000U * 6); // "EMC" and "Q", each with a line feed
}

} // namespace
