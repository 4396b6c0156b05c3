#include "bates/CommaText.h"

#include <algorithm>

namespace {

bool IsBlank(QChar c) {
    return c <= u' ';
}

bool NeedsQuotes(const string& item) {
    return std::any_of(item.begin(), item.end(),
                       [](QChar c) { return IsBlank(c) || c == u',' || c == u'"'; });
}

string Quoted(const string& item) {
    return u'"' + string(item).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

class TReader {
public:
    explicit TReader(QStringView text) : FText(text) {}

    QStringList Items() {
        QStringList items;
        SkipBlanks();
        while (!AtEnd()) {
            items.append(FText[FAt] == u'"' ? QuotedItem() : PlainItem());
            SkipBlanks();
            if (AtEnd() || FText[FAt] != u',')
                continue;
            ++FAt;
            SkipBlanks();
            if (AtEnd())
                items.append(string()); // behind a comma there is always an item
        }
        return items;
    }

private:
    [[nodiscard]] bool AtEnd() const { return FAt >= FText.size(); }
    void SkipBlanks() {
        while (!AtEnd() && IsBlank(FText[FAt]))
            ++FAt;
    }
    string PlainItem() {
        const qsizetype begin = FAt;
        while (!AtEnd() && !IsBlank(FText[FAt]) && FText[FAt] != u',')
            ++FAt;
        return FText.sliced(begin, FAt - begin).toString();
    }
    /// An item whose closing quote is missing runs to the end.
    string QuotedItem() {
        string item;
        for (++FAt; !AtEnd(); ++FAt) {
            if (FText[FAt] == u'"') {
                ++FAt;
                if (AtEnd() || FText[FAt] != u'"')
                    return item;
            }
            item += FText[FAt];
        }
        return item;
    }

    QStringView FText;
    qsizetype FAt = 0;
};

} // namespace

string ToCommaText(const QStringList& items) {
    if (items.size() == 1 && items.front().isEmpty())
        return QStringLiteral("\"\""); // an empty text would be an empty list
    QStringList written;
    for (const string& item : items)
        written.append(NeedsQuotes(item) ? Quoted(item) : item);
    return written.join(u',');
}

QStringList FromCommaText(QStringView text) {
    return TReader(text).Items();
}

string TrimBlanks(const string& text) {
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && IsBlank(text[begin]))
        ++begin;
    while (end > begin && IsBlank(text[end - 1]))
        --end;
    return text.mid(begin, end - begin);
}
