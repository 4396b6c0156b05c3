#include "engine/import/FormImport.h"

#include "engine/pdf/FieldTree.h"

#include <qpdf/QPDFAcroFormDocumentHelper.hh>

#include <unordered_map>
#include <unordered_set>

namespace {

constexpr size_t MaxDepth = 2000; // the library's copying calls itself for each object on a path

/// Whether everything reachable is reached on paths that the library's depth-first copying survives.
bool ShallowEnough(const std::vector<QPDFObjectHandle>& roots) {
    std::unordered_set<quint64> seen;
    std::vector<std::pair<QPDFObjectHandle, size_t>> waiting;
    waiting.reserve(roots.size());
    for (const QPDFObjectHandle& root : roots)
        waiting.emplace_back(root, 0);
    while (!waiting.empty()) {
        auto [object, depth] = waiting.back();
        waiting.pop_back();
        if (object.isIndirect() && !seen.insert(KeyOf(object)).second)
            continue;
        if (depth > MaxDepth)
            return false;
        QPDFObjectHandle dict = object.isStream() ? object.getDict() : object;
        if (IsName(Entry(dict, "/Type"), "/Page") && depth > 0)
            continue;
        if (dict.isDictionary())
            for (auto& [key, value] : dict.getDictAsMap())
                waiting.emplace_back(value, depth + 1);
        else if (dict.isArray())
            for (const QPDFObjectHandle& item : dict.getArrayAsVector())
                waiting.emplace_back(item, depth + 1);
    }
    return true;
}

/// For as long as it lives, the form of the document has no resources but those that are some: the library's
/// merging gives up at any other.
class TCleanResources {
public:
    explicit TCleanResources(QPDF& pdf) : FForm(Entry(pdf.getRoot(), "/AcroForm")) {
        FOriginal = Entry(FForm, "/DR");
        if (!FOriginal.isDictionary())
            return;
        QPDFObjectHandle clean = FOriginal.shallowCopy();
        for (auto& [kind, resources] : FOriginal.getDictAsMap())
            if (!resources.isDictionary() && !resources.isArray())
                clean.removeKey(kind);
        FForm.replaceKey("/DR", clean);
    }
    ~TCleanResources() {
        if (FOriginal.isDictionary())
            FForm.replaceKey("/DR", FOriginal);
    }
    Q_DISABLE_COPY(TCleanResources)

private:
    QPDFObjectHandle FForm;
    QPDFObjectHandle FOriginal;
};

class TFormImport {
public:
    TFormImport(TDocumentCore& core, const TPDFSource& source)
        : FTarget(*core.Source->Pdf), FSource(*source.Pdf), FForeign(core.Source.get() != &source) {}

    /// Pages that are copied for the first time in a batch share fields; further copies get their own.
    void Import(const std::vector<const TImportedWidgets*>& pages) {
        std::vector<QPDFObjectHandle> widgets;
        for (const TImportedWidgets* page : pages)
            widgets.insert(widgets.end(), page->Widgets.begin(), page->Widgets.end());
        if (!ShallowEnough(widgets))
            throw EPDFError(QStringLiteral("form fields are nested too deeply"));
        std::vector<QPDFObjectHandle> copies;
        std::vector<QPDFObjectHandle> fields;
        std::set<QPDFObjGen> oldFields;
        FTarget.transformAnnotations(QPDFObjectHandle::newArray(widgets), copies, fields, oldFields,
                                     QPDFMatrix(), FForeign ? &FSource.getQPDF() : nullptr,
                                     FForeign ? &FSource : nullptr);
        if (copies.size() != widgets.size())
            throw EPDFError(QStringLiteral("form fields are damaged"));
        auto copy = copies.begin();
        for (const TImportedWidgets* page : pages)
            for (size_t i = 0; i < page->Widgets.size(); ++i)
                Attach(page->Page, *copy++);
        std::unordered_set<quint64> present;
        for (const QPDFObjectHandle& widget : copies)
            present.insert(KeyOf(widget));
        const auto gone = [&](const QPDFObjectHandle& widget) { return !present.contains(KeyOf(widget)); };
        FTarget.addAndRenameFormFields(PruneFields(QPDFObjectHandle::newArray(fields), gone));
    }

private:
    static void Attach(QPDFObjectHandle page, QPDFObjectHandle widget) {
        QPDFObjectHandle annotations = page.getKey("/Annots");
        if (!annotations.isArray()) {
            page.replaceKey("/Annots", QPDFObjectHandle::newArray());
            annotations = page.getKey("/Annots");
        }
        widget.replaceKey("/P", page);
        widget.removeKey("/StructParent");
        annotations.appendItem(widget);
    }

    QPDFAcroFormDocumentHelper FTarget;
    QPDFAcroFormDocumentHelper FSource;
    bool FForeign;
};

} // namespace

void ImportForms(TDocumentCore& core, const TPDFSource& source, const std::vector<TImportedWidgets>& pages) {
    std::vector<std::vector<const TImportedWidgets*>> rounds;
    std::unordered_map<quint64, size_t> copies;
    for (const TImportedWidgets& page : pages) {
        if (page.Widgets.empty())
            continue;
        const size_t round = copies[KeyOf(page.CopiedFrom)]++;
        if (round == rounds.size())
            rounds.emplace_back();
        rounds[round].push_back(&page);
    }
    if (rounds.empty())
        return;
    try {
        // The library walks the source's page tree by recursion.
        if (source.Walk.Broken)
            throw EPDFError(QStringLiteral("its page tree is damaged"));
        std::optional<TCleanResources> clean;
        if (source.Pdf != core.Source->Pdf) // else the fields share the form that they are in
            clean.emplace(*source.Pdf);
        TFormImport import(core, source);
        for (const auto& round : rounds)
            import.Import(round);
    } catch (const std::exception& e) {
        core.Warnings.Add(
            TWarningKind::FieldsLost,
            QStringLiteral("Form fields of \"%1\" were not imported: %2").arg(source.Path, MessageOf(e)));
    }
}
