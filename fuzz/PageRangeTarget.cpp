// A page range: its pages are those of the document.
#include "engine/pages/PageRange.h"
#include "fuzz/Target.h"

#include <algorithm>

int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    constexpr int PageCount = 23;
    try {
        const TZQPDFPagesRangeSelector range(TextOf(data, size), PageCount, 1);
        for (const int page : range)
            Require(page >= 1 && page <= PageCount, "a page that the document doesn't have");
        const std::vector<int> distinct = DistinctPages(range);
        Require(distinct.size() <= size_t(PageCount), "more pages than there are");
        Require(std::is_sorted(distinct.begin(), distinct.end()), "pages out of order");
    } catch (const Exception&) {
    }
    return 0;
}
