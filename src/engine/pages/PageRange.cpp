#include "engine/pages/PageRange.h"
#include "engine/pdf/Errors.h"

#include <algorithm>
#include <numeric>

namespace {

/// Reads a range from left to right.
class TRangeParser {
public:
    TRangeParser(const string& text, int pageCount) : FText(text), FPageCount(pageCount) {}

    std::vector<int> Parse() {
        SkipSeparators();
        if (AtEnd())
            AddSpan(1, FPageCount);
        while (!AtEnd()) {
            ParseItem();
            SkipSeparators();
        }
        return std::move(FPages);
    }

private:
    [[nodiscard]] bool AtEnd() const { return FPos >= FText.size(); }
    [[nodiscard]] QChar Peek() const { return AtEnd() ? QChar() : FText.at(FPos); }

    void SkipBlanks() {
        while (Peek().isSpace())
            ++FPos;
    }
    void SkipSeparators() {
        while (Peek().isSpace() || Peek() == u',')
            ++FPos;
    }

    [[noreturn]] void Fail() const {
        throw EPDFError(QStringLiteral("Invalid page range \"%1\".").arg(FText));
    }

    void ParseItem() {
        if (TakeWord(u"all"))
            return AddSpan(1, FPageCount);
        if (TakeWord(u"odd"))
            return AddEvery2nd(1);
        if (TakeWord(u"even"))
            return AddEvery2nd(2);
        const int first = ParsePage().Number;
        const auto afterPage = FPos;
        SkipBlanks();
        if (Peek() != u'-') {
            FPos = afterPage;
            RequireItemEnd();
            return AddSpan(first, first);
        }
        ++FPos;
        SkipBlanks();
        const TPage last = AtEnd() || Peek() == u',' ? TPage{FPageCount, true} : ParsePage();
        RequireItemEnd();
        if (first <= FPageCount || !last.IsEnd) // "to the end" never counts down from behind it
            AddSpan(first, last.Number);
    }

    struct TPage {
        int Number;
        bool IsEnd; ///< written as the document's last page, whichever that is
    };

    /// A page number; one too great for the document is as good as any other such.
    TPage ParsePage() {
        if (TakeWord(u"last") || TakeWord(u"[numpages]"))
            return {FPageCount, true};
        if (!IsDigit(Peek()))
            Fail();
        int page = 0;
        for (; IsDigit(Peek()); ++FPos)
            page = std::min(page * 10 + Peek().digitValue(), Beyond / 10 - 1);
        return {page, false};
    }

    bool TakeWord(QStringView word) {
        if (!SameText(QStringView(FText).mid(FPos, word.size()), word))
            return false;
        const QChar next = FPos + word.size() < FText.size() ? FText.at(FPos + word.size()) : QChar();
        if (next.isLetterOrNumber())
            Fail();
        FPos += word.size();
        return true;
    }

    void RequireItemEnd() const {
        if (!AtEnd() && !Peek().isSpace() && Peek() != u',')
            Fail();
    }

    static bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }

    void AddSpan(int first, int last) {
        const bool down = first > last;
        const int low = std::max(down ? last : first, 1);
        const int high = std::min(down ? first : last, FPageCount);
        if (low > high)
            return;
        const auto old = std::ptrdiff_t(FPages.size());
        FPages.resize(FPages.size() + size_t(high - low + 1));
        std::iota(FPages.begin() + old, FPages.end(), low);
        if (down)
            std::reverse(FPages.begin() + old, FPages.end());
        if (FPages.size() > MaxPages)
            Fail();
    }

    void AddEvery2nd(int first) {
        for (int page = first; page <= FPageCount; page += 2)
            FPages.push_back(page);
    }

    static constexpr int Beyond = 1'000'000'000;
    static constexpr size_t MaxPages = 50'000'000; // "all all all ..." must not eat the machine

    const string FText;
    const int FPageCount;
    qsizetype FPos = 0;
    std::vector<int> FPages;
};

} // namespace

TZQPDFPagesRangeSelector::TZQPDFPagesRangeSelector(const string& range, int pageCount, int firstPage) {
    Q_ASSERT(firstPage == 1);
    static_cast<void>(firstPage);
    FPages = TRangeParser(range, pageCount).Parse();
}

std::vector<int> DistinctPages(const TZQPDFPagesRangeSelector& selector) {
    std::vector<int> pages(selector.begin(), selector.end());
    std::sort(pages.begin(), pages.end());
    pages.erase(std::unique(pages.begin(), pages.end()), pages.end());
    return pages;
}
