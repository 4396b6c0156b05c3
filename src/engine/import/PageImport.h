#pragma once
// The pages of the list that are copies become page objects of the document.
#include "engine/core/DocumentCore.h"

class TPageImport {
public:
    explicit TPageImport(TDocumentCore& core);
    ~TPageImport();

    /// Copies the pages with what they show and their annotations; form fields are left out.
    void MakeCopies();
    /// Adds the form fields, when the copies stand in the page tree.
    void JoinForms();

private:
    struct TBatch;
    TDocumentCore& FCore;
    std::vector<std::unique_ptr<TBatch>> FBatches;
};
