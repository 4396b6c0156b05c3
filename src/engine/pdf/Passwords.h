#pragma once
// The bytes that passwords are made keys from.
#include "base/Text.h"

#include <string>
#include <vector>

/// For RC4 and 128-bit AES: PDFDocEncoding. Raises EPDFError for characters that it lacks.
[[nodiscard]] std::string PdfDocPassword(const string& password);

/// For 256-bit AES: UTF-8 after SASLprep, cut at 127 bytes as readers cut it (ISO 32000-2, 7.6.4.3.3). Raises
/// EPDFError for a password that SASLprep forbids or leaves nothing of.
[[nodiscard]] std::string Aes256Password(const string& password);

/// What a password, which is UTF-8, may have been when the file was protected: the likeliest first.
[[nodiscard]] std::vector<std::string> PasswordSpellings(const NarrowString& password);
