#include "engine/save/RewriteRules.h"

namespace {

/// ISO 32000-1, table 15; readers don't look for a catalog in the trailer itself.
void MakeCatalogIndirect(QPDF& pdf) {
    QPDFObjectHandle trailer = pdf.getTrailer();
    if (QPDFObjectHandle root = trailer.getKey("/Root"); !root.isIndirect())
        trailer.replaceKey("/Root", pdf.makeIndirectObject(root));
}

/// A signature over the whole file that grants readers more than they would allow (12.8.2.3). Where it no
/// longer holds they allow less than without it, and say so at each opening.
void DropUsageRights(TDocumentCore& core) {
    QPDFObjectHandle permissions = Entry(core.Root(), "/Perms");
    if (!permissions.isDictionary() || (!permissions.hasKey("/UR3") && !permissions.hasKey("/UR")))
        return;
    permissions.removeKey("/UR3");
    permissions.removeKey("/UR");
    if (permissions.getKeys().empty())
        core.Root().removeKey("/Perms");
    core.Warnings.Add(
        TWarningKind::SignatureInvalidated,
        QStringLiteral("The document's usage rights can't cover the changes and were removed."));
}

/// The library writes streams of metadata without compression, which is meant for the document's own, for
/// which programs look in the file. Those of pages and pictures stay as they are.
void KeepNestedMetadata(QPDF& pdf) {
    const QPDFObjectHandle own = pdf.getRoot().getKey("/Metadata");
    for (QPDFObjectHandle object : pdf.getAllObjects())
        if (object.isStreamOfType("/Metadata") && !object.isSameObjectAs(own))
            object.setFilterOnWrite(false);
}

} // namespace

void ApplyRewriteRules(TDocumentCore& core) {
    QPDF& pdf = *core.Source->Pdf;
    MakeCatalogIndirect(pdf);
    DropUsageRights(core);
    KeepNestedMetadata(pdf);
}
