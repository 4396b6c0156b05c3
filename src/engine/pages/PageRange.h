#pragma once
// Page ranges as people write them: "1-3, 7-, last".
//
//   range = [ item { blank | comma item } ]      item = "all" | "odd" | "even" | span
//   span  = page [ "-" [ page ] ]                page = number | "last" | "[numpages]"
//
// A span whose first page is the greater one counts down; one without a second page runs to the end of the
// document. One that runs to the end, however that is written, and begins behind it selects nothing: "2-last"
// of one page is empty. Blanks around the hyphen belong to the span. Words are read without regard to case.
#include "base/Text.h"

#include <vector>

/// The pages of a range in the order written, counted from 1; a page named twice is there twice.
class TZQPDFPagesRangeSelector {
public:
    class TEnumerator {
    public:
        explicit TEnumerator(const std::vector<int>& pages) : FPages(&pages) {}
        /// True if there is a further page; GetCurrent gives it then.
        bool MoveNext() { return ++FIndex < int(FPages->size()); }
        [[nodiscard]] int GetCurrent() const { return FPages->at(size_t(FIndex)); }

    private:
        const std::vector<int>* FPages;
        int FIndex = -1;
    };

    /// Pages outside 1 to `pageCount` select nothing; an empty text selects all. `firstPage` is the number
    /// of the document's first page, always 1. Raises EPDFError for a text that isn't a range.
    TZQPDFPagesRangeSelector(const string& range, int pageCount, int firstPage);

    [[nodiscard]] TEnumerator GetEnumerator() const { return TEnumerator(FPages); }
    [[nodiscard]] int Count() const { return int(FPages.size()); }
    [[nodiscard]] auto begin() const { return FPages.begin(); }
    [[nodiscard]] auto end() const { return FPages.end(); }

private:
    std::vector<int> FPages;
};

/// The same pages, each once and ascending.
[[nodiscard]] std::vector<int> DistinctPages(const TZQPDFPagesRangeSelector& selector);
