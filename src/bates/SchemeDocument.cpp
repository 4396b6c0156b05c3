#include "bates/SchemeDocument.h"

#include "bates/SchemeFields.h"
#include "xml/XmlFile.h"
#include "xml/XmlParser.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <utility>
#include <vector>

namespace {

constexpr QByteArrayView EmptyDocument = R"(<?xml version="1.0" encoding="UTF-8"?><batesstamps/>)";

const xmlChar* Xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

bool IsElement(const xmlNode* node) {
    return node->type == XML_ELEMENT_NODE;
}

bool IsText(const xmlNode* node) {
    return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}

bool IsBlankText(const xmlNode* node) {
    return node != nullptr && node->type == XML_TEXT_NODE && xmlIsBlankNode(node) == 1;
}

string FromXml(const xmlChar* text) {
    return text == nullptr ? string() : QString::fromUtf8(reinterpret_cast<const char*>(text));
}

/// The "id" of an element; none for other nodes and where there is none.
std::optional<string> IdOf(xmlNode* node) {
    xmlChar* value = IsElement(node) ? xmlGetNoNsProp(node, Xml("id")) : nullptr;
    if (value == nullptr)
        return std::nullopt;
    const std::unique_ptr<xmlChar, void (*)(void*)> owner(value, xmlFree);
    return FromXml(value);
}

xmlNode* ChildOf(const xmlNode* parent, const QByteArray& name) {
    for (xmlNode* child = parent->children; child != nullptr; child = child->next)
        if (IsElement(child) && (child->ns == nullptr || child->ns->prefix == nullptr) &&
            xmlStrEqual(child->name, Xml(name.constData())) != 0)
            return child;
    return nullptr;
}

/// The text of an element that holds just text; comments don't count.
std::optional<string> TextOf(const xmlNode* element) {
    string text;
    for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (IsElement(child))
            return std::nullopt;
        if (IsText(child))
            text += FromXml(child->content);
    }
    return text;
}

void Drop(xmlNode* node) {
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}

/// Comments stay; elements inside go, since nobody would read the text beside them.
void SetText(xmlNode* element, const string& text) {
    if (TextOf(element) == text)
        return;
    for (xmlNode* child = element->children; child != nullptr;) {
        xmlNode* next = child->next;
        if (IsText(child) || IsElement(child))
            Drop(child);
        child = next;
    }
    if (!text.isEmpty())
        xmlAddChild(element, xmlNewDocText(element->doc, Xml(Narrow(text).constData())));
}

/// A line break and the blanks in front of a node at that depth.
void AddIndent(xmlNode* parent, int depth) {
    const QByteArray indent = '\n' + QByteArray(qsizetype(depth) * 2, ' ');
    xmlAddChild(parent, xmlNewDocText(parent->doc, Xml(indent.constData())));
}

/// A new last child, on a line of its own whatever the layout in front of it is.
xmlNode* AppendChild(xmlNode* parent, const QByteArray& name) {
    int depth = 0;
    for (const xmlNode* node = parent; node->parent != nullptr && IsElement(node->parent);
         node = node->parent)
        ++depth;
    if (IsBlankText(parent->last))
        Drop(parent->last);
    AddIndent(parent, depth + 1);
    xmlNode* child = xmlAddChild(parent, xmlNewDocNode(parent->doc, nullptr, Xml(name.constData()), nullptr));
    AddIndent(parent, depth);
    return child;
}

} // namespace

struct TSchemeDocument::Impl {
    struct TFree {
        void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    };

    explicit Impl(QByteArrayView bytes)
        : Document(xmlReadMemory(bytes.data(), int(bytes.size()), nullptr, "UTF-8",
                                 XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING)) {}

    [[nodiscard]] xmlNode* Root() const { return xmlDocGetRootElement(Document.get()); }
    /// The first element of that id; null if there is none.
    [[nodiscard]] xmlNode* Find(const string& id) const {
        xmlNode* node = Root()->children;
        while (node != nullptr && IdOf(node) != id)
            node = node->next;
        return node;
    }

    std::unique_ptr<xmlDoc, TFree> Document;
};

TSchemeDocument::TSchemeDocument() : FImpl(std::make_unique<Impl>(EmptyDocument)) {}

TSchemeDocument::TSchemeDocument(const string& fileName) {
    // The project's own reader refuses what is malformed, declares entities or is beyond the limits, with
    // the place; the library's tree then keeps what that reader leaves out.
    const string source = u'"' + fileName + u'"';
    FImpl = std::make_unique<Impl>(ParseXml(ReadXmlFile(fileName), source).Bytes);
    if (!FImpl->Document)
        throw EXmlError(source + QStringLiteral(" cannot be read"));
}

TSchemeDocument::~TSchemeDocument() = default;

QByteArray TSchemeDocument::Bytes() const {
    xmlChar* memory = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(FImpl->Document.get(), &memory, &size, "UTF-8");
    const std::unique_ptr<xmlChar, void (*)(void*)> owner(memory, xmlFree);
    return {reinterpret_cast<const char*>(memory), size};
}

QByteArray TSchemeDocument::CheckedBytes(const string& fileName) const {
    QByteArray bytes = Bytes();
    (void)ParseXml(bytes, u'"' + fileName + u'"');
    return bytes;
}

QStringList TSchemeDocument::Ids() const {
    QStringList ids;
    for (xmlNode* node = FImpl->Root()->children; node != nullptr; node = node->next)
        if (const auto id = IdOf(node))
            ids.append(*id);
    return ids;
}

bool TSchemeDocument::Read(const string& id, TZQPDFBatesSetting& scheme) const {
    const xmlNode* element = FImpl->Find(id);
    if (element == nullptr)
        return false;
    scheme.Name = id;
    SchemeFields::Read(scheme, [&](const QByteArray& name) {
        const xmlNode* child = ChildOf(element, name);
        return child == nullptr ? std::nullopt : TextOf(child);
    });
    return true;
}

void TSchemeDocument::Write(const TZQPDFBatesSetting& scheme) {
    std::vector<std::pair<QByteArray, string>> fields;
    SchemeFields::CheckXmlText(scheme.Name, QStringLiteral("Name"));
    SchemeFields::Write(scheme,
                        [&](const QByteArray& name, const string& text) { fields.emplace_back(name, text); });
    xmlNode* element = FImpl->Find(scheme.Name);
    if (element == nullptr) {
        element = AppendChild(FImpl->Root(), "batestamp");
        xmlSetProp(element, Xml("id"), Xml(Narrow(scheme.Name).constData()));
    }
    for (const auto& [name, text] : fields) {
        xmlNode* child = ChildOf(element, name);
        SetText(child != nullptr ? child : AppendChild(element, name), text);
    }
}

void TSchemeDocument::Remove(const string& id) {
    xmlNode* element = FImpl->Find(id);
    if (element == nullptr)
        return;
    xmlNode* root = element->parent;
    if (IsBlankText(element->prev))
        Drop(element->prev);
    Drop(element);
    if (IsBlankText(root->children) && root->children == root->last)
        Drop(root->children);
}
