#include "xml/XmlParser.h"

#include <QHash>
#include <QStringDecoder>

#include <exception>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

namespace {

string FromXml(const xmlChar* text, qsizetype length) {
    // A mark U+FEFF that opens a text is part of it.
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
    return decoder.decode(QByteArrayView(reinterpret_cast<const char*>(text), length));
}

/// Utf8: whatever the document declares, after a conversion.
enum class Encoding { AsDeclared, Utf8 };

/// The parser's events build the tree. Exceptions must not cross the library's frames: the first one is
/// kept, the parser stopped, and Parse() throws it.
class TTreeBuilder {
public:
    explicit TTreeBuilder(TXmlDocument& document) : FDocument(document) {}
    void Parse(Encoding encoding);

private:
    struct TOpen {
        TXmlElement* Element;
        QByteArray Text;
    };

    template <class TBody> static void Guard(void* self, TBody body) noexcept {
        auto& builder = *static_cast<TTreeBuilder*>(self);
        if (builder.FFailure)
            return;
        try {
            body(builder);
        } catch (...) {
            builder.FFailure = std::current_exception();
            xmlStopParser(builder.FContext);
        }
    }
    static void Handlers(xmlSAXHandler& handler);
    static void OnError(void* self, xmlErrorPtr error) noexcept;

    void CheckEncoding();
    void StartElement(const xmlChar* name, const xmlChar* prefix, int attributeCount,
                      const xmlChar** attributes);
    void EndElement();
    void ReadAttributes(TXmlElement& element, int count, const xmlChar** attributes);
    string Name(const xmlChar* name, const xmlChar* prefix);
    [[noreturn]] void Raise(const string& what) const;
    [[nodiscard]] string Place(int line, int column) const {
        return QStringLiteral("%1, line %2, column %3: ")
            .arg(FDocument.Source, QString::number(line), QString::number(column));
    }

    TXmlDocument& FDocument;
    xmlParserCtxtPtr FContext = nullptr;
    std::vector<TOpen> FOpen;             ///< innermost last; parents don't move while a child is open
    QHash<const xmlChar*, string> FNames; ///< the library keeps one copy of each name
    int FElements = 0;
    std::exception_ptr FFailure;
};

void TTreeBuilder::Raise(const string& what) const {
    throw EXmlError(Place(FContext->input->line, FContext->input->col) + what);
}

void TTreeBuilder::OnError(void* self, xmlErrorPtr error) noexcept {
    auto& builder = *static_cast<TTreeBuilder*>(self);
    // Undeclared prefixes are no fault: prefixed elements are members that nobody knows.
    if (builder.FFailure || error->level < XML_ERR_ERROR || error->domain == XML_FROM_NAMESPACE)
        return;
    // The library goes on for a while, so later events are ignored. Stopping it here would free what the
    // function that found the error still reads.
    try {
        throw EXmlError(builder.Place(error->line, error->int2) +
                        QString::fromUtf8(error->message).trimmed());
    } catch (...) {
        builder.FFailure = std::current_exception();
    }
}

void TTreeBuilder::Handlers(xmlSAXHandler& handler) {
    handler = {};
    handler.initialized = XML_SAX2_MAGIC;
    handler.serror = OnError;
    handler.startDocument = [](void* self) { Guard(self, [](TTreeBuilder& b) { b.CheckEncoding(); }); };
    // Called before anything inside the declaration is read.
    handler.internalSubset = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
        Guard(self, [](TTreeBuilder& b) {
            b.Raise(QStringLiteral("document type declarations (<!DOCTYPE ...>) are not accepted"));
        });
    };
    handler.startElementNs = [](void* self, const xmlChar* name, const xmlChar* prefix, const xmlChar*, int,
                                const xmlChar**, int attributeCount, int, const xmlChar** attributes) {
        Guard(self, [=](TTreeBuilder& b) { b.StartElement(name, prefix, attributeCount, attributes); });
    };
    handler.endElementNs = [](void* self, const xmlChar*, const xmlChar*, const xmlChar*) {
        Guard(self, [](TTreeBuilder& b) { b.EndElement(); });
    };
    handler.characters = [](void* self, const xmlChar* text, int length) {
        Guard(self, [=](TTreeBuilder& b) {
            b.FOpen.back().Text.append(reinterpret_cast<const char*>(text), length);
        });
    };
    handler.ignorableWhitespace = handler.characters;
    handler.cdataBlock = handler.characters;
}

void TTreeBuilder::CheckEncoding() {
    // The library keeps the declared name in the one place for what it reads as it is, in the other for
    // what it converts.
    const xmlChar* name = FContext->encoding != nullptr ? FContext->encoding : FContext->input->encoding;
    if (name == nullptr)
        return;
    const string declared = FromXml(name, xmlStrlen(name));
    if (!SameText(declared, u"UTF-8") && !SameText(declared, u"US-ASCII") && !SameText(declared, u"ASCII"))
        Raise(QStringLiteral("the encoding %1 is not supported, save the file as UTF-8").arg(declared));
}

string TTreeBuilder::Name(const xmlChar* name, const xmlChar* prefix) {
    string& known = FNames[name];
    if (known.isNull())
        known = FromXml(name, xmlStrlen(name));
    return prefix == nullptr ? known : FromXml(prefix, xmlStrlen(prefix)) + u':' + known;
}

void TTreeBuilder::ReadAttributes(TXmlElement& element, int count, const xmlChar** attributes) {
    for (int i = 0; i < count; ++i) {
        const xmlChar** attribute = attributes + qsizetype(i) * 5; // name, prefix, namespace, begin, end
        element.Attributes.emplace_back(Name(attribute[0], attribute[1]),
                                        FromXml(attribute[3], attribute[4] - attribute[3]));
    }
}

void TTreeBuilder::StartElement(const xmlChar* name, const xmlChar* prefix, int attributeCount,
                                const xmlChar** attributes) {
    if (++FElements > XmlLimits::Elements)
        Raise(QStringLiteral("more than %1 elements").arg(XmlLimits::Elements));
    if (FOpen.size() >= size_t(XmlLimits::Depth))
        Raise(QStringLiteral("elements are nested more than %1 deep").arg(XmlLimits::Depth));
    TXmlElement& element = FOpen.empty() ? FDocument.Root : FOpen.back().Element->Children.emplace_back();
    element.Name = Name(name, prefix);
    element.Line = FContext->input->line;
    // The parser stands before the end of the start tag, and no "<" may stand in between.
    element.Begin = FDocument.Bytes.lastIndexOf('<', xmlByteConsumed(FContext));
    ReadAttributes(element, attributeCount, attributes);
    FOpen.push_back({&element, {}});
}

void TTreeBuilder::EndElement() {
    TXmlElement& element = *FOpen.back().Element;
    const QByteArray& text = FOpen.back().Text;
    if (element.Children.empty() || !text.trimmed().isEmpty())
        element.Text = FromXml(reinterpret_cast<const xmlChar*>(text.constData()), text.size());
    element.End = xmlByteConsumed(FContext);
    FOpen.pop_back();
}

void TTreeBuilder::Parse(Encoding encoding) {
    static const bool initialized = (xmlInitParser(), true); // once, whatever threads parse first
    Q_UNUSED(initialized);
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(
        xmlCreateMemoryParserCtxt(FDocument.Bytes.constData(), int(FDocument.Bytes.size())),
        &xmlFreeParserCtxt);
    if (!context)
        throw EXmlError(FDocument.Source + QStringLiteral(" cannot be read: out of memory"));
    FContext = context.get();
    FContext->userData = this;
    Handlers(*FContext->sax);
    xmlCtxtUseOptions(FContext, XML_PARSE_NONET | (encoding == Encoding::Utf8 ? XML_PARSE_IGNORE_ENC : 0));
    xmlParseDocument(FContext);
    if (FFailure)
        std::rethrow_exception(FFailure);
    if (FContext->wellFormed == 0)
        throw EXmlError(FDocument.Source + QStringLiteral(" is no XML document"));
}

} // namespace

string TXmlElement::Attribute(QStringView name) const {
    for (const auto& [key, value] : Attributes)
        if (key == name)
            return value.isNull() ? QStringLiteral("") : value;
    return {};
}

string TXmlDocument::Outer(const TXmlElement& element) const {
    return QString::fromUtf8(QByteArrayView(Bytes).sliced(element.Begin, element.End - element.Begin));
}

void CheckXmlSize(qsizetype bytes, const string& source) {
    if (bytes > XmlLimits::FileBytes)
        throw EXmlError(QStringLiteral("%1 is too large: the limit is %2 MiB")
                            .arg(source, QString::number(XmlLimits::FileBytes >> 20)));
}

TXmlDocument ParseXml(const QByteArray& bytes, const string& source) {
    CheckXmlSize(bytes.size(), source);
    TXmlDocument document{source, bytes, {}};
    const bool wide = bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF");
    if (wide) {
        QStringDecoder decoder(QStringConverter::Utf16);
        document.Bytes = string(decoder.decode(bytes)).toUtf8();
    }
    if (document.Bytes.trimmed().isEmpty())
        throw EXmlError(source + QStringLiteral(" is empty"));
    TTreeBuilder(document).Parse(wide ? Encoding::Utf8 : Encoding::AsDeclared);
    return document;
}
