#pragma once
// Actions that add something to the document.
#include "actions/Action.h"
#include "bates/BatesSetting.h"
#include "scripting/DocumentDescription.h"

class TPDFActionAddFileAttachment : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddFileAttachment() {}
    FIELD(TFileName, fileName);
};

class TPDFActionAddDocumentDescription : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddDocumentDescription() {}
    FIELD(TPDFDocumentDescription, Description);
};

/// Stamps the pages of a range with the scheme that it carries.
class TPDFActionAddBatesNumbering : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddBatesNumbering() {}
    PUBLISHED(TZQPDFBatesSetting, bates, Fbates);
    PUBLISHED(string, pageRange, FpageRange);
};
