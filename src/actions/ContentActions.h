#pragma once
// Actions that add something to the document as a whole. Both hold public fields.
#include "actions/Action.h"
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
