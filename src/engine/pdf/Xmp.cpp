#include "engine/pdf/Xmp.h"

#include "xml/XmlEscape.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <QStringList>

#include <memory>

namespace {

constexpr char Rdf[] = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr char DublinCore[] = "http://purl.org/dc/elements/1.1/";
constexpr char PdfSchema[] = "http://ns.adobe.com/pdf/1.3/";
constexpr char XmpBasic[] = "http://ns.adobe.com/xap/1.0/";
constexpr char PdfAId[] = "http://www.aiim.org/pdfa/ns/id/";

enum class TForm { Text, Alternatives, Sequence };

struct TProperty {
    const char* InfoKey;
    const char* Namespace;
    const char* Prefix;
    const char* Name;
    TForm Form;
};

/// ISO 19005-1, 6.7.3: which entry of the information dictionary is which property.
constexpr TProperty Properties[] = {
    {"Title", DublinCore, "dc", "title", TForm::Alternatives},
    {"Author", DublinCore, "dc", "creator", TForm::Sequence},
    {"Subject", DublinCore, "dc", "description", TForm::Alternatives},
    {"Keywords", PdfSchema, "pdf", "Keywords", TForm::Text},
    {"Producer", PdfSchema, "pdf", "Producer", TForm::Text},
    {"Creator", XmpBasic, "xmp", "CreatorTool", TForm::Text},
    {"", XmpBasic, "xmp", "ModifyDate", TForm::Text},
    {"", XmpBasic, "xmp", "MetadataDate", TForm::Text},
};

const xmlChar* X(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

bool Is(const xmlNode* node, const char* ns, const char* name) {
    return node->type == XML_ELEMENT_NODE && node->ns != nullptr && xmlStrEqual(node->ns->href, X(ns)) != 0 &&
           xmlStrEqual(node->name, X(name)) != 0;
}

/// The first rdf:RDF of the document, in document order.
xmlNode* FindRdf(xmlNode* root) {
    for (xmlNode* node = root; node;) {
        if (Is(node, Rdf, "RDF"))
            return node;
        if (node->children) {
            node = node->children;
            continue;
        }
        while (node != root && !node->next)
            node = node->parent;
        node = node == root ? nullptr : node->next;
    }
    return nullptr;
}

/// A property may stand as an element or, where it is text, as an attribute of any description.
void RemoveProperty(xmlNode* rdf, const TProperty& property) {
    for (xmlNode* description = rdf->children; description; description = description->next) {
        if (!Is(description, Rdf, "Description"))
            continue;
        if (xmlAttr* attribute = xmlHasNsProp(description, X(property.Name), X(property.Namespace)))
            xmlRemoveProp(attribute);
        for (xmlNode* child = description->children; child;) {
            xmlNode* next = child->next;
            if (Is(child, property.Namespace, property.Name)) {
                xmlUnlinkNode(child);
                xmlFreeNode(child);
            }
            child = next;
        }
    }
}

xmlNs* NamespaceAt(xmlNode* node, const char* href, const char* prefix) {
    if (xmlNs* known = xmlSearchNsByHref(node->doc, node, X(href));
        known != nullptr && known->prefix != nullptr)
        return known;
    if (xmlNs* made = xmlNewNs(node, X(href), X(prefix)))
        return made;
    return xmlNewNs(node, X(href), X((QByteArray(prefix) + '_').constData())); // the prefix means another
}

void AddProperty(xmlNode* description, const TProperty& property, const NarrowString& value) {
    xmlNs* ns = NamespaceAt(description, property.Namespace, property.Prefix);
    xmlNode* element = xmlNewChild(description, ns, X(property.Name), nullptr);
    if (property.Form == TForm::Text) {
        xmlNodeAddContent(element, X(value.constData()));
        return;
    }
    xmlNs* rdf = xmlSearchNsByHref(description->doc, description, X(Rdf));
    const bool alternatives = property.Form == TForm::Alternatives;
    xmlNode* list = xmlNewChild(element, rdf, X(alternatives ? "Alt" : "Seq"), nullptr);
    xmlNode* item = xmlNewChild(list, rdf, X("li"), nullptr);
    if (alternatives)
        xmlNodeSetLang(item, X("x-default"));
    xmlNodeAddContent(item, X(value.constData()));
}

xmlNode* FirstDescription(xmlNode* rdf) {
    for (xmlNode* child = rdf->children; child; child = child->next)
        if (Is(child, Rdf, "Description"))
            return child;
    xmlNode* made = xmlNewChild(rdf, rdf->ns, X("Description"), nullptr);
    xmlNewNsProp(made, rdf->ns, X("about"), X(""));
    return made;
}

/// The document without an XML declaration, which a packet doesn't have, and without its white space at the
/// end, which is room for editing in place.
NarrowString Serialised(xmlDoc* document) {
    const std::unique_ptr<xmlBuffer, void (*)(xmlBuffer*)> buffer(xmlBufferCreate(), xmlBufferFree);
    for (xmlNode* node = document->children; node; node = node->next) {
        xmlNodeDump(buffer.get(), document, node, 0, 0);
        if (node->next)
            xmlBufferWriteChar(buffer.get(), "\n");
    }
    return {reinterpret_cast<const char*>(xmlBufferContent(buffer.get())), xmlBufferLength(buffer.get())};
}

/// What XML 1.0 can't hold is left out.
NarrowString XmlText(const string& text) {
    string kept;
    for (qsizetype i = 0; i < text.size(); ++i)
        if (!IsForbiddenInXml(text, i))
            kept.append(text[i]);
    return kept.toUtf8();
}

using TXmlDocument = std::unique_ptr<xmlDoc, void (*)(xmlDoc*)>;

/// Null where the packet isn't one.
TXmlDocument Parsed(const NarrowString& packet) {
    constexpr int Options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    // Padding behind the closing instruction, NUL bytes among it, ends a strict parser.
    const NarrowString trimmed = NarrowString(packet).replace('\0', ' ').trimmed();
    TXmlDocument document(xmlReadMemory(trimmed.constData(), int(trimmed.size()), nullptr, nullptr, Options),
                          xmlFreeDoc);
    if (document && document->intSubset) // a packet has no document type, so no entities
        document.reset();
    return document;
}

using TXmlText = std::unique_ptr<xmlChar, void (*)(void*)>;

string Taken(xmlChar* text) {
    const TXmlText held(text, xmlFree);
    return QString::fromUtf8(reinterpret_cast<const char*>(text)).trimmed();
}

bool IsDefaultLanguage(xmlNode* item) {
    return Taken(xmlNodeGetLang(item)) == u"x-default";
}

/// Text of an element: of the items of its list, if it has one. Alternatives say the same in several
/// languages, of which the default counts, else the first.
string TextOfElement(xmlNode* element, TForm form) {
    xmlNode* list = xmlFirstElementChild(element);
    xmlNode* item = list ? xmlFirstElementChild(list) : nullptr;
    if (!item)
        return Taken(xmlNodeGetContent(element));
    if (form == TForm::Alternatives) {
        for (xmlNode* other = item; other; other = xmlNextElementSibling(other))
            if (IsDefaultLanguage(other))
                return Taken(xmlNodeGetContent(other));
        return Taken(xmlNodeGetContent(item));
    }
    QStringList items;
    for (; item; item = xmlNextElementSibling(item))
        items.append(Taken(xmlNodeGetContent(item)));
    return items.join(QStringLiteral("; "));
}

string FindProperty(xmlNode* rdf, const char* ns, const char* name, TForm form) {
    for (xmlNode* description = rdf->children; description; description = description->next) {
        if (!Is(description, Rdf, "Description"))
            continue;
        if (xmlChar* attribute = xmlGetNsProp(description, X(name), X(ns)))
            return Taken(attribute);
        for (xmlNode* child = description->children; child; child = child->next)
            if (Is(child, ns, name))
                return TextOfElement(child, form);
    }
    return {};
}

} // namespace

NarrowString EmptyXmp() {
    return NarrowString("<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
                        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"") +
           Rdf +
           "\"><rdf:Description rdf:about=\"\"/></rdf:RDF></x:xmpmeta>\n"
           "<?xpacket end=\"w\"?>";
}

std::map<NarrowString, string> InfoOfXmp(const NarrowString& packet) {
    std::map<NarrowString, string> info;
    const TXmlDocument document = Parsed(packet);
    xmlNode* rdf = document ? FindRdf(xmlDocGetRootElement(document.get())) : nullptr;
    for (const TProperty& property : Properties)
        if (rdf && *property.InfoKey != '\0')
            info[property.InfoKey] = FindProperty(rdf, property.Namespace, property.Name, property.Form);
    return info;
}

int PdfAPartOf(const NarrowString& packet) {
    if (!packet.contains(PdfAId)) // which few files do
        return 0;
    const TXmlDocument document = Parsed(packet);
    xmlNode* rdf = document ? FindRdf(xmlDocGetRootElement(document.get())) : nullptr;
    return rdf ? FindProperty(rdf, PdfAId, "part", TForm::Text).toInt() : 0;
}

std::optional<NarrowString> UpdateXmp(const NarrowString& packet, const std::map<NarrowString, string>& info,
                                      const QDateTime& now) {
    const TXmlDocument document = Parsed(packet);
    xmlNode* rdf = document ? FindRdf(xmlDocGetRootElement(document.get())) : nullptr;
    if (!rdf)
        return std::nullopt;
    xmlNode* description = FirstDescription(rdf);
    const NarrowString date = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate).toLatin1();
    for (const TProperty& property : Properties) {
        const bool isDate = *property.InfoKey == '\0';
        const auto entry = info.find(property.InfoKey);
        if (!isDate && entry == info.end())
            continue;
        RemoveProperty(rdf, property);
        const NarrowString value = isDate ? date : XmlText(entry->second);
        if (!value.isEmpty())
            AddProperty(description, property, value);
    }
    return Serialised(document.get());
}
