#include "engine/save/XfaForm.h"

#include "engine/pdf/Flate.h"
#include "engine/save/PageContent.h"

#include <qpdf/Buffer.hh>

#include <algorithm>

namespace {

/// A packet of the form; empty where it can't be read or is larger than a configuration would be.
std::string PacketOf(QPDFObjectHandle stream) {
    constexpr size_t Largest = 16 << 20;
    try {
        const auto data = stream.getRawStreamData();
        const std::string_view raw(reinterpret_cast<const char*>(data->getBuffer()), data->getSize());
        const bool isPlain = stream.getDict().getKey("/Filter").isNull();
        return isPlain ? std::string(raw) : Inflated(raw, Largest).value_or(std::string());
    } catch (const std::exception&) {
        return {};
    }
}

/// Newer forms say so in the catalog, older ones in their configuration only.
bool AsksForRendering(const std::string& configuration) {
    constexpr std::string_view Element = "dynamicRender>";
    constexpr std::string_view Value = "required";
    const size_t at = configuration.find(Element);
    if (at == std::string::npos)
        return false;
    const size_t value = configuration.find_first_not_of(" \t\r\n", at + Element.size());
    return value != std::string::npos && configuration.compare(value, Value.size(), Value) == 0;
}

bool ChangesPages(const TDocumentCore& core) {
    return core.StructureChanged || std::any_of(core.Pages.Items().begin(), core.Pages.Items().end(),
                                                [](const std::unique_ptr<TZQPDFPage>& page) {
                                                    const TPageObject& object = page->Object();
                                                    return object.NewRotation || object.NewCrop ||
                                                           HasPendingContent(*page);
                                                });
}

} // namespace

bool IsDynamicXfa(const QPDFObjectHandle& root) {
    QPDFObjectHandle form = Entry(Entry(root, "/AcroForm"), "/XFA");
    if (!form.isStream() && !form.isArray())
        return false;
    QPDFObjectHandle flag = Entry(root, "/NeedsRendering");
    if (flag.isBool() && flag.getBoolValue())
        return true;
    if (form.isStream())
        return AsksForRendering(PacketOf(form));
    const std::vector<QPDFObjectHandle> packets = form.getArrayAsVector(); // names and streams in turn
    for (size_t i = 0; i + 1 < packets.size(); i += 2)
        if (QPDFObjectHandle stream = packets[i + 1]; TextOf(packets[i]) == u"config" && stream.isStream())
            return AsksForRendering(PacketOf(stream));
    return false;
}

void WarnOfUnseenPages(TDocumentCore& core) {
    const string warning =
        QStringLiteral("The document is a dynamic XFA form: viewers that show such forms make "
                       "its pages by themselves, without what was changed on them.");
    if (ChangesPages(core) && IsDynamicXfa(core.Root()))
        core.Warnings.Add(TWarningKind::ContentNotShown, warning);
}
