#pragma once
// Writes the items added to an outline into the document's file (ISO 32000-1, 12.3.3). Only levels with
// new items, and the counts above them, are touched.
#include "engine/outlines/OutlineTree.h"

class TZQPDFPage;

class TOutlineWriter {
public:
    TOutlineWriter(QPDF& pdf, const TZQPDFPages& pages, const TOutlineNodes& nodes);

    /// The pages are objects of the file already. An item whose page has gone is left out, or loses its
    /// destination if it has items below it. Afterwards no node is new.
    void Write();

private:
    void LeaveOut();
    void MakeObjects();
    void MakeRoot();
    void Link();
    void Count();
    [[nodiscard]] QPDFObjectHandle DestinationOf(const TOutlineTarget& target) const;

    QPDF& FPdf;
    const TOutlineNodes& FNodes;
    std::unordered_map<quint64, const TZQPDFPage*> FPages; // by their ids
};
