#define PCRE2_CODE_UNIT_WIDTH 16
#include "base/UniqueName.h"

#include "base/Exceptions.h"
#include "base/Folder.h"
#include "base/FolderListing.h"
#include "base/Paths.h"

#include <pcre2.h>

#include <algorithm>
#include <array>
#include <memory>

namespace {

string EngineMessage(int code) {
    std::array<PCRE2_UCHAR, 256> buffer{};
    pcre2_get_error_message(code, buffer.data(), buffer.size());
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(buffer.data()));
}

/// A compiled pattern of which only group 1 of the first match is asked.
class TNumberPattern {
public:
    explicit TNumberPattern(const string& pattern) {
        int error = 0;
        PCRE2_SIZE offset = 0;
        FCode.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.utf16()), PCRE2_SIZE(pattern.size()),
                                  PCRE2_CASELESS | PCRE2_UTF, &error, &offset, nullptr));
        if (FCode == nullptr)
            throw ENameError(
                QStringLiteral("No free name can be formed: the path gives the regular expression "
                               "\"%1\", which is not valid at offset %2: %3")
                    .arg(pattern, QString::number(offset), EngineMessage(error)));
        FMatch.reset(pcre2_match_data_create_from_pattern(FCode.get(), nullptr));
    }

    /// The number in group 1: -1 where it doesn't fit 32 bits or is none, nothing without a match.
    [[nodiscard]] std::optional<qint32> NumberIn(const string& text) const {
        const int found = pcre2_match(FCode.get(), reinterpret_cast<PCRE2_SPTR>(text.utf16()),
                                      PCRE2_SIZE(text.size()), 0, 0, FMatch.get(), nullptr);
        if (found == PCRE2_ERROR_NOMATCH)
            return std::nullopt;
        if (found < 0)
            throw ENameError(
                QStringLiteral("No free name can be formed for \"%1\": %2").arg(text, EngineMessage(found)));
        const PCRE2_SIZE* ends = pcre2_get_ovector_pointer(FMatch.get());
        if (found < 2 || ends[2] == PCRE2_UNSET)
            return -1;
        bool isNumber = false;
        const int number = text.mid(qsizetype(ends[2]), qsizetype(ends[3] - ends[2])).toInt(&isNumber);
        return isNumber ? number : -1;
    }

private:
    std::unique_ptr<pcre2_code, decltype(&pcre2_code_free)> FCode{nullptr, pcre2_code_free};
    std::unique_ptr<pcre2_match_data, decltype(&pcre2_match_data_free)> FMatch{nullptr,
                                                                               pcre2_match_data_free};
};

} // namespace

namespace {

constexpr int LongestName = 255; // bytes, of the usual file systems
constexpr int LongestStem = LongestName - int(sizeof " (2147483648).pdf") + 1; // fits the longest number

/// One above the highest number that `siblings`, names in the folder of `stem`, have by the pattern.
qint64 NextNumber(const TNumberPattern& pattern, const string& path, const QStringList& siblings) {
    qint64 counter = 0; // wider than the numbers, since the highest of them is increased
    for (const string& name : siblings)
        if (const auto number = pattern.NumberIn(path + name))
            counter = std::max<qint64>(counter, *number);
    return counter + 1;
}

string Numbered(const string& stem, qint64 number) {
    return stem + QStringLiteral(" (%1).pdf").arg(number);
}

/// The rule, for a name that is taken.
string NumberedByRule(const string& fn, const TFolder& folder) {
    const string stem = WithoutExtension(fn);
    // A backslash is a legal character of a name here and this engine's escape character.
    const TNumberPattern pattern(string(stem).replace(u'\\', QStringLiteral("\\\\")) +
                                 QStringLiteral(" \\((\\d+)\\)"));
    const QStringList siblings = ListFiles(folder, ExtractFileName(stem) + QStringLiteral("*.pdf"));
    return Numbered(stem, NextNumber(pattern, ExtractFilePath(fn), siblings));
}

/// For names that the rule makes too long: the stem loses whole characters until any number fits. Stems are
/// compared as they stand, so the answer is free.
string NumberedShort(const string& fn, const TFolder& folder) {
    const string path = ExtractFilePath(fn);
    string stem = ExtractFileName(WithoutExtension(fn));
    while (PathBytes(stem).size() > LongestStem) {
        const qsizetype pair = stem.size() > 1 && stem.at(stem.size() - 1).isLowSurrogate() ? 2 : 1;
        stem.chop(pair);
    }
    for (qint64 number = 1;; ++number)
        if (const string name = Numbered(stem, number); !folder.Holds(PathBytes(name)))
            return path + name;
}

} // namespace

string UniqueFileName(const string& fn) {
    if (!NameTaken(fn))
        return fn;
    const string path = ExtractFilePath(fn);
    return UniqueFileName(fn, *TFolder::Open(path.isEmpty() ? QStringLiteral(".") : path));
}

string UniqueFileName(const string& fn, const TFolder& folder) {
    if (!folder.Holds(PathBytes(ExtractFileName(fn))))
        return fn;
    const bool isLong = PathBytes(ExtractFileName(WithoutExtension(fn))).size() > LongestStem;
    try {
        const string name = NumberedByRule(fn, folder);
        return PathBytes(ExtractFileName(name)).size() > LongestName ? NumberedShort(fn, folder) : name;
    } catch (const ENameError&) {
        if (!isLong)
            throw;
        return NumberedShort(fn, folder); // a stem that was cut may end within a pair of brackets
    }
}
