#pragma once
// Text that XML 1.0 cannot hold. Control characters, lone surrogates, U+FFFE and U+FFFF may not stand in a
// document, not even as references; scripts and pasted texts hold them all the same. They are written
// _xHHHH_ (the code unit in hexadecimal), and a text that reads so by itself has its first underscore
// escaped: ECMA-376 part 1, 22.9.2.19, ST_Xstring.
#include "base/Text.h"

/// Whether XML cannot hold the code unit that stands there.
[[nodiscard]] bool IsForbiddenInXml(QStringView text, qsizetype at);

/// The text with what XML cannot hold escaped; markup characters are left alone (xml/XmlWriter.h).
[[nodiscard]] string EscapeForbidden(const string& text);
/// The inverse: UnescapeForbidden(EscapeForbidden(t)) == t for every t.
[[nodiscard]] string UnescapeForbidden(const string& text);
