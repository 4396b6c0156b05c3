#include "engine/pdf/EmbeddedFileTree.h"

#include "base/Paths.h"

#include <algorithm>
#include <unordered_set>

namespace {

constexpr size_t FilesPerLeaf = 64;

/// Keys and Filespec dictionaries take turns; one that stands without its counterpart loses nothing but that.
void ReadLeaf(QPDFObjectHandle names, std::vector<TEmbeddedFile>& files) {
    std::string key;
    for (QPDFObjectHandle item : names.getArrayAsVector()) {
        if (item.isString())
            key = item.getStringValue();
        else if (item.isDictionary())
            files.push_back({std::exchange(key, {}), item});
        else
            key.clear();
    }
}

QPDFObjectHandle NamesOf(const TEmbeddedFile* first, const TEmbeddedFile* last) {
    std::vector<QPDFObjectHandle> names;
    for (; first != last; ++first) {
        names.push_back(QPDFObjectHandle::newString(first->Key));
        names.push_back(first->Spec);
    }
    return QPDFObjectHandle::newArray(names);
}

QPDFObjectHandle NewLeaf(QPDF& pdf, const TEmbeddedFile* first, const TEmbeddedFile* last) {
    QPDFObjectHandle leaf = QPDFObjectHandle::newDictionary();
    leaf.replaceKey("/Limits", QPDFObjectHandle::newArray({QPDFObjectHandle::newString(first->Key),
                                                           QPDFObjectHandle::newString((last - 1)->Key)}));
    leaf.replaceKey("/Names", NamesOf(first, last));
    return pdf.makeIndirectObject(leaf);
}

QPDFObjectHandle NewTree(QPDF& pdf, const std::vector<TEmbeddedFile>& files) {
    QPDFObjectHandle tree = QPDFObjectHandle::newDictionary();
    const TEmbeddedFile* all = files.data();
    if (files.size() <= FilesPerLeaf) {
        tree.replaceKey("/Names", NamesOf(all, all + files.size()));
        return pdf.makeIndirectObject(tree);
    }
    std::vector<QPDFObjectHandle> kids;
    for (size_t at = 0; at < files.size(); at += FilesPerLeaf)
        kids.push_back(NewLeaf(pdf, all + at, all + std::min(at + FilesPerLeaf, files.size())));
    tree.replaceKey("/Kids", QPDFObjectHandle::newArray(kids));
    return pdf.makeIndirectObject(tree);
}

} // namespace

std::vector<TEmbeddedFile> ReadEmbeddedFiles(QPDF& pdf) {
    std::vector<TEmbeddedFile> files;
    std::unordered_set<quint64> seen;
    std::vector<QPDFObjectHandle> waiting{Entry(Entry(pdf.getRoot(), "/Names"), "/EmbeddedFiles")};
    while (!waiting.empty()) {
        QPDFObjectHandle node = waiting.back();
        waiting.pop_back();
        if (!node.isDictionary() || (node.isIndirect() && !seen.insert(KeyOf(node)).second))
            continue;
        if (QPDFObjectHandle names = Entry(node, "/Names"); names.isArray())
            ReadLeaf(names, files);
        if (QPDFObjectHandle kids = Entry(node, "/Kids"); kids.isArray()) {
            const std::vector<QPDFObjectHandle> nodes = kids.getArrayAsVector();
            waiting.insert(waiting.end(), nodes.rbegin(), nodes.rend());
        }
    }
    return files;
}

string ShownName(const TEmbeddedFile& file) {
    string name = TextOf(QPDFObjectHandle::newString(file.Key));
    for (const char* of : {"/UF", "/F", "/Unix", "/DOS", "/Mac"}) {
        const string told = TextOf(Entry(file.Spec, of));
        if (told.isEmpty())
            continue;
        name = told;
        break;
    }
    return ExtractFileName(name.replace(u'\\', u'/'));
}

void WriteEmbeddedFiles(QPDF& pdf, std::vector<TEmbeddedFile> files) {
    QPDFObjectHandle names = Entry(pdf.getRoot(), "/Names");
    if (files.empty()) {
        if (names.isDictionary())
            names.removeKey("/EmbeddedFiles");
        return;
    }
    std::stable_sort(files.begin(), files.end(),
                     [](const TEmbeddedFile& a, const TEmbeddedFile& b) { return a.Key < b.Key; });
    if (!names.isDictionary()) {
        names = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
        pdf.getRoot().replaceKey("/Names", names);
    }
    names.replaceKey("/EmbeddedFiles", NewTree(pdf, files));
}
