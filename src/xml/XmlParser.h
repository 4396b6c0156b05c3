#pragma once
// Reading of XML into a small tree. No other code of this module knows the XML library; what keeps foreign
// XML as it is has code of its own beside it: the packets of PDF files and the scheme files of Bates numbers.
//
// Made for configuration files from anywhere: no network, no document type declarations and so no entities
// of their own, and stated limits, so that no file can hang the program or eat its memory. Nothing is
// printed. Documents are UTF-8, or UTF-16 with a byte order mark.
#include "base/Exceptions.h"

#include <utility>
#include <vector>

/// XML that is malformed, beyond the limits, or says what the reader cannot use. The text names the source
/// and the place.
class EXmlError : public Exception {
public:
    using Exception::Exception;
};

namespace XmlLimits {
inline constexpr qsizetype FileBytes = 64 << 20;
inline constexpr int Depth = 200;
inline constexpr int Elements = 1'000'000;
} // namespace XmlLimits

using TXmlAttributes = std::vector<std::pair<string, string>>;

struct TXmlElement {
    string Name; ///< with its prefix, if any
    TXmlAttributes Attributes;
    string Text; ///< character data without that of children; blanks alone don't count beside children
    std::vector<TXmlElement> Children;
    int Line = 0;        ///< of the start tag's end, from 1
    qsizetype Begin = 0; ///< the element's bytes in TXmlDocument::Bytes, tags included
    qsizetype End = 0;

    /// The value of an attribute, null if there is none.
    [[nodiscard]] string Attribute(QStringView name) const;
};

struct TXmlDocument {
    string Source;    ///< as it stands in messages: a path in quotes, or "stream"
    QByteArray Bytes; ///< UTF-8
    TXmlElement Root;

    /// The element as it stands in the document.
    [[nodiscard]] string Outer(const TXmlElement& element) const;
};

/// Raises EXmlError with source, line and column.
[[nodiscard]] TXmlDocument ParseXml(const QByteArray& bytes, const string& source);

/// Raises EXmlError unless the size is within the limit.
void CheckXmlSize(qsizetype bytes, const string& source);
