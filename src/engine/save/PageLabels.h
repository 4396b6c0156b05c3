#pragma once
// Page labels (ISO 32000-1, 12.4.2) follow their pages when these move.
#include "engine/core/DocumentCore.h"

class QPDFPageLabelDocumentHelper;

class TPageLabels {
public:
    /// Notes the label of each page of the list, before the source's page tree changes.
    explicit TPageLabels(const TDocumentCore& core);
    /// Writes them for the list as it stands. New pages get none; a document without labels stays so.
    void Write(TDocumentCore& core) const;

private:
    void Note(QPDFPageLabelDocumentHelper& helper, const TDocumentCore& core);

    std::vector<QPDFObjectHandle> FLabels; // empty: the document has none
};
