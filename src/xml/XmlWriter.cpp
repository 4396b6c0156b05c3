#include "xml/XmlWriter.h"

namespace {

enum class Where { Text, Attribute };

/// What stands for a character. Line breaks and tabs may stand as they are in a text, but a reader turns CR
/// to LF, and all of them to blanks in an attribute (XML 1.0, 2.11 and 3.3.3).
QStringView Reference(QChar c, Where where) {
    switch (c.unicode()) {
    case u'&':
        return u"&amp;";
    case u'<':
        return u"&lt;";
    case u'>':
        return u"&gt;";
    case u'\r':
        return u"&#13;";
    case u'"':
        return where == Where::Attribute ? u"&quot;" : QStringView();
    case u'\n':
        return where == Where::Attribute ? u"&#10;" : QStringView();
    case u'\t':
        return where == Where::Attribute ? u"&#9;" : QStringView();
    default:
        return {};
    }
}

string Escaped(const string& text, Where where) {
    string escaped;
    qsizetype done = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringView reference = Reference(text[i], where);
        if (reference.isNull())
            continue;
        escaped += QStringView(text).sliced(done, i - done);
        escaped += reference;
        done = i + 1;
    }
    return done == 0 ? text : escaped.append(QStringView(text).sliced(done));
}

} // namespace

TXmlWriter::TXmlWriter(XmlLayout layout)
    : FLayout(layout), FBytes(R"(<?xml version="1.0" encoding="UTF-8"?>)") {
    EndLine();
}

void TXmlWriter::EndLine() {
    if (FLayout == XmlLayout::Indented)
        FBytes += '\n';
}

void TXmlWriter::BeginElement() {
    // What the reader would refuse is refused here, before a good file is replaced by it.
    if (FOpen.size() >= size_t(XmlLimits::Depth))
        throw EXmlError(QStringLiteral("Objects are nested more than %1 deep in \"%2\"")
                            .arg(XmlLimits::Depth)
                            .arg(FOpen.back()));
    if (++FElements > XmlLimits::Elements)
        throw EXmlError(QStringLiteral("More than %1 elements to store").arg(XmlLimits::Elements));
    if (FTagPending) {
        FBytes += '>';
        EndLine();
        FTagPending = false;
    }
    if (FLayout == XmlLayout::Indented)
        FBytes += QByteArray(qsizetype(FOpen.size()) * 2, ' ');
}

void TXmlWriter::Open(const string& name, const TXmlAttributes& attributes) {
    BeginElement();
    FBytes += '<' + Narrow(name);
    for (const auto& [key, value] : attributes)
        FBytes += ' ' + Narrow(key) + "=\"" + Narrow(Escaped(value, Where::Attribute)) + '"';
    FTagPending = true;
    FOpen.push_back(name);
}

void TXmlWriter::Close() {
    const string name = FOpen.back();
    FOpen.pop_back();
    if (FTagPending) {
        FBytes += "/>";
        FTagPending = false;
    } else {
        if (FLayout == XmlLayout::Indented)
            FBytes += QByteArray(qsizetype(FOpen.size()) * 2, ' ');
        FBytes += "</" + Narrow(name) + '>';
    }
    EndLine();
}

void TXmlWriter::Leaf(const string& name, const string& text) {
    BeginElement();
    const QByteArray narrow = Narrow(name);
    FBytes += '<' + narrow + '>' + Narrow(Escaped(text, Where::Text)) + "</" + narrow + '>';
    EndLine();
}

void TXmlWriter::Raw(const string& element) {
    const QByteArray bytes = Narrow(element);
    (void)ParseXml(bytes, QStringLiteral("A kept element"));
    BeginElement();
    FBytes += bytes;
    EndLine();
}
