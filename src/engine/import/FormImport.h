#pragma once
// Form fields of imported pages.
#include "engine/core/DocumentCore.h"

/// The widgets of a copied page, still those of its source.
struct TImportedWidgets {
    QPDFObjectHandle Page; ///< the copy
    QPDFObjGen CopiedFrom;
    std::vector<QPDFObjectHandle> Widgets;
};

/// Copies the widgets and their fields from `source`, which may be the document's own, into the document's
/// form, through the library's fix-up of names, default appearances and resources. Fields keep the widgets
/// on the copied pages only. Where a form is too damaged for that, its fields are left out with a warning.
void ImportForms(TDocumentCore& core, const TPDFSource& source, const std::vector<TImportedWidgets>& pages);
