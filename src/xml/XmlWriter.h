#pragma once
// Writing of XML 1.0 in UTF-8, element by element.
#include "xml/XmlParser.h"

enum class XmlLayout {
    Indented, ///< a line for each element, two blanks a level
    Compact   ///< no white space between elements
};

class TXmlWriter {
public:
    explicit TXmlWriter(XmlLayout layout);

    /// Opens an element that will hold others.
    void Open(const string& name, const TXmlAttributes& attributes = {});
    void Close();
    /// A whole element with a text. What XML cannot hold must be escaped (xml/XmlEscape.h).
    void Leaf(const string& name, const string& text);
    /// An element that is XML already; it is checked and written as it stands.
    void Raw(const string& element);

    /// The document, complete when every element is closed.
    [[nodiscard]] const QByteArray& Bytes() const { return FBytes; }

private:
    void BeginElement();
    void EndLine();

    XmlLayout FLayout;
    QByteArray FBytes;
    std::vector<string> FOpen;
    int FElements = 0;
    bool FTagPending = false; ///< the innermost start tag lacks its end: it may turn out to be empty
};
