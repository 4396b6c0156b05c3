#include "engine/pdf/Passwords.h"

#include "engine/pdf/Errors.h"

#include <qpdf/QUtil.hh>

#include <unicode/usprep.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

constexpr size_t Aes256Bytes = 127;

/// RFC 4013. Characters that came after its Unicode 3.2 are let through as they are, as for a query. Null for
/// what it forbids: control characters, and directions of writing mixed.
std::optional<string> SaslPrepared(const string& password) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UStringPrepProfile, decltype(&usprep_close)> profile(
        usprep_openByType(USPREP_RFC4013_SASLPREP, &status), usprep_close);
    if (U_FAILURE(status))
        return std::nullopt;
    constexpr int LongestExpansion = 18; // of one character by compatibility
    string prepared(password.size() * LongestExpansion + 1, u'\0');
    const int length = usprep_prepare(profile.get(), reinterpret_cast<const UChar*>(password.utf16()),
                                      int32_t(password.size()), reinterpret_cast<UChar*>(prepared.data()),
                                      int32_t(prepared.size()), USPREP_ALLOW_UNASSIGNED, nullptr, &status);
    if (U_FAILURE(status))
        return std::nullopt;
    prepared.truncate(length);
    return prepared;
}

std::string Cut(std::string password) {
    password.resize(std::min(password.size(), Aes256Bytes));
    return password;
}

} // namespace

std::string PdfDocPassword(const string& password) {
    std::string encoded;
    if (!QUtil::utf8_to_pdf_doc(password.toStdString(), encoded))
        throw EPDFError(
            QStringLiteral("A password holds characters that only 256-bit encryption can handle."));
    return encoded;
}

std::string Aes256Password(const string& password) {
    const auto prepared = SaslPrepared(password);
    if (!prepared)
        throw EPDFError(QStringLiteral("A password holds characters that passwords can't have: control "
                                       "characters, or letters of both directions of writing."));
    if (prepared->isEmpty() && !password.isEmpty())
        throw EPDFError(QStringLiteral("A password holds nothing but characters that don't count in one."));
    return Cut(prepared->toStdString());
}

std::vector<std::string> PasswordSpellings(const NarrowString& password) {
    std::vector<std::string> spellings{password.toStdString()};
    const auto add = [&](std::string spelling) {
        if (std::find(spellings.begin(), spellings.end(), spelling) == spellings.end())
            spellings.push_back(std::move(spelling));
    };
    if (std::string encoded; QUtil::utf8_to_pdf_doc(spellings[0], encoded))
        add(encoded);
    if (const auto prepared = SaslPrepared(Widen(password)))
        add(Cut(prepared->toStdString()));
    return spellings;
}
