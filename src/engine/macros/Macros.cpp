#include "engine/macros/Macros.h"

#include "base/Paths.h"
#include "engine/document/Document.h"
#include "engine/macros/MacroDates.h"

#include <algorithm>
#include <array>
#include <pwd.h>
#include <unistd.h>

namespace {

/// What macros stand for. A kind of text leaves null what it doesn't know.
struct TMacroValues {
    const TPDFDocument* Document = nullptr;
    QDateTime Now;
    string FileName;
    const string* Page = nullptr;
    const string* PageCount = nullptr;
    const string* User = nullptr;

    [[nodiscard]] std::optional<string> Expand(QStringView macro) const;

private:
    [[nodiscard]] std::optional<string> Plain(QStringView name) const;
    [[nodiscard]] std::optional<string> PageNumber(QStringView sum) const;
    [[nodiscard]] string Info(const char* key) const {
        return Document != nullptr ? Document->GetInfoString(key) : string();
    }
};

bool StartsWith(QStringView text, QStringView prefix) {
    return text.size() >= prefix.size() && SameText(text.first(prefix.size()), prefix);
}

std::optional<qint64> DigitsOnly(QStringView text) {
    const bool digits = std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    return ok && digits ? std::optional(number) : std::nullopt;
}

std::optional<string> IfKnown(const string* value) {
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

/// "N:digits", the part behind "page+".
std::optional<string> TMacroValues::PageNumber(QStringView sum) const {
    const qsizetype colon = sum.indexOf(u':');
    if (Page == nullptr || colon < 0)
        return std::nullopt;
    const auto page = DigitsOnly(*Page);
    const auto added = DigitsOnly(sum.first(colon));
    const auto digits = DigitsOnly(sum.sliced(colon + 1));
    qint64 number = 0;
    if (!page || !added || !digits || __builtin_add_overflow(*page, *added, &number))
        return std::nullopt;
    const int width = int(std::min<qint64>(*digits, MacroLimits::Digits));
    return QString::number(number).rightJustified(width, u'0');
}

std::optional<string> TMacroValues::Plain(QStringView name) const {
    if (SameText(name, u"page"))
        return IfKnown(Page);
    if (SameText(name, u"numpages"))
        return IfKnown(PageCount);
    if (SameText(name, u"user"))
        return IfKnown(User);
    if (SameText(name, u"filename"))
        return FileName;
    if (SameText(name, u"date"))
        return FormatMacroDate(Now, u"yyyy-mm-dd");
    if (SameText(name, u"time"))
        return FormatMacroDate(Now, u"hh:MM");
    if (SameText(name, u"author"))
        return Info("Author");
    if (SameText(name, u"title"))
        return Info("Title");
    if (SameText(name, u"subject"))
        return Info("Subject");
    if (SameText(name, u"created"))
        return MacroDateOfPdf(Info("CreationDate"));
    return std::nullopt;
}

std::optional<string> TMacroValues::Expand(QStringView macro) const {
    if (StartsWith(macro, u"page+"))
        return PageNumber(macro.sliced(5));
    if (StartsWith(macro, u"date:") && macro.size() > 5)
        return FormatMacroDate(Now, macro.sliced(5));
    return Plain(macro);
}

/// An opening bracket that another one follows before any closing one stands for itself.
string ExpandAll(const string& text, const TMacroValues& values) {
    const QStringView all(text);
    string result;
    qsizetype done = 0;
    qsizetype open = -1;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'[')
            open = i;
        if (text[i] != u']' || open < 0)
            continue;
        const auto value = values.Expand(all.sliced(open + 1, i - open - 1));
        const qsizetype length = result.size() + open - done;
        if (value && length + value->size() <= MacroLimits::ExpandedText) {
            result += all.sliced(done, open - done);
            result += *value;
            done = i + 1;
        }
        open = -1;
    }
    return done == 0 ? text : result.append(all.sliced(done));
}

string LoginName() {
    std::array<char, 16384> buffer;
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr)
        return Widen(found->pw_name);
    return qEnvironmentVariable("USER"); // a user without an entry, as in some containers
}

} // namespace

string PDFformatMacroString(const TPDFDocument* document, const string& page, const string& pageCount,
                            const string& text, const string& fileName, const QDateTime& now) {
    if (!text.contains(u'['))
        return text;
    TMacroValues values;
    values.Document = document;
    values.Now = now;
    values.FileName = fileName;
    values.Page = &page;
    values.PageCount = &pageCount;
    return ExpandAll(text, values);
}

string formatVarString(const TPDFDocument* document, const string& text) {
    if (!text.contains(u'['))
        return text;
    const string user = LoginName();
    TMacroValues values;
    values.Document = document;
    values.Now = QDateTime::currentDateTime();
    values.FileName = document != nullptr ? ExtractFileName(document->FileName()) : string();
    values.User = &user;
    return ExpandAll(text, values);
}
