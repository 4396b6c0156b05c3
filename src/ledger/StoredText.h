#pragma once
// Text as the ledger holds it. File names are bytes, and a database's text is not: PostgreSQL takes neither a
// NUL nor what isn't valid UTF-8, and either may lose a byte order mark in front. Such a byte is stored as
// U+241B and two digits, as in "a␛00b", and U+241B itself twice; all other text stands as it is, so that
// whoever looks into the tables can read it.
#include "base/Text.h"

[[nodiscard]] string StoredText(const QByteArray& bytes);
[[nodiscard]] string StoredText(const string& text);

[[nodiscard]] QByteArray BytesOfStored(const string& stored);
[[nodiscard]] string TextOfStored(const string& stored);
