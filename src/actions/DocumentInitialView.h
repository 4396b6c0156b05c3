#pragma once
#include "base/Reflection.h"
#include "engine/pdf/Types.h"

/// How a viewer shows a document when it opens it (ISO 32000-1, tables 28 and 150).
struct TPDFDocumentInitialView {
    Q_GADGET
public:
    FIELD(Boolean, HideMenubar) = false;
    FIELD(Boolean, HideToolbar) = false;
    FIELD(Boolean, HideWindowUI) = false; ///< scroll bars and the like
    FIELD(Boolean, FitWindow) = false;
    FIELD(Boolean, CenterWindow) = false;
    FIELD(Boolean, DisplayDocTitle) = false;
    FIELD(TPDFPageMode, PageMode) = TPDFPageMode::pmUseNone;
    FIELD(TPDFPageLayout, PageLayout) = TPDFPageLayout::plSinglePage;
    bool operator==(const TPDFDocumentInitialView&) const = default;
};
