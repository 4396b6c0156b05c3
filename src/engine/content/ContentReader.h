#pragma once
// Reads a page's contents as far as it takes to put something behind them.
#include "engine/decode/DecodeBudget.h"
#include "engine/pdf/Qpdf.h"

#include <unordered_map>

struct TReadContent {
    /// The streams of the contents, unchanged except where a restore that restores nothing had to go.
    std::vector<QPDFObjectHandle> Streams;
    /// What closes that which they leave open.
    std::string Closing;
    /// What can't be decoded to its end, or leaves off within a string or an image: where that ends, and in
    /// which state, is each reader's own opinion. Then there is one stream, and nothing to close it with.
    bool Damaged = false;
};

class TContentReader {
public:
    /// `pdf` is the document that the contents belong to. They don't tell themselves: the direct array of a
    /// copied page belongs to none. `stored` is the size of its file in bytes.
    TContentReader(QPDF& pdf, qint64 stored);

    /// `contents` is a page's /Contents: a stream, an array of streams or nothing. Raises EPDFError where
    /// they, or those of all pages so far, decode to more than a document can need.
    [[nodiscard]] TReadContent Read(const QPDFObjectHandle& contents);

private:
    TReadContent ReadStreams(std::vector<QPDFObjectHandle> streams);

    QPDF& FPdf;
    TDecodeBudget FBudget;
    std::unordered_map<quint64, TReadContent> FKnown; // pages often share a stream
};
