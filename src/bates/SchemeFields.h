#pragma once
// How the fields of a scheme stand in the scheme file: a child element for each but the name, in the order
// of the record, called like the field in lower case. Nothing depends on the locale.
#include "bates/BatesSetting.h"

#include <functional>
#include <optional>

namespace SchemeFields {

/// Calls `put` with the element and text of each field in order, as files have them: texts without blanks
/// at their ends, numbers with at most 15 significant digits, the colour as an unsigned decimal number.
/// Raises Exception for a text that XML cannot hold.
void Write(const TZQPDFBatesSetting& scheme,
           const std::function<void(const QByteArray& element, const string& text)>& put);

/// Fills the record from what `get` knows of each element. A missing text is empty and a missing outline
/// flag off; a number or colour that is missing or unreadable leaves its field alone.
void Read(TZQPDFBatesSetting& scheme,
          const std::function<std::optional<string>(const QByteArray& element)>& get);

/// Raises Exception for a text that XML cannot hold (XML 1.0, 2.2), naming it as `what`.
void CheckXmlText(const string& text, const string& what);

} // namespace SchemeFields
