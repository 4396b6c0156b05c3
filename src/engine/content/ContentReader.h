#pragma once
// Reads a page's contents as far as it takes to put something behind them.
#include "engine/Qpdf.h"

#include <unordered_map>

struct TReadContent {
    /// The streams of the contents, unchanged except where a restore that restores nothing had to go.
    std::vector<QPDFObjectHandle> Streams;
    /// What closes that which they leave open.
    std::string Closing;
};

class TContentReader {
public:
    /// `pdf` is the document that the contents belong to. They don't tell themselves: the direct array of a
    /// copied page belongs to none.
    explicit TContentReader(QPDF& pdf) : FPdf(pdf) {}

    /// `contents` is a page's /Contents: a stream, an array of streams or nothing. Content that can't be
    /// decoded counts as balanced.
    [[nodiscard]] TReadContent Read(const QPDFObjectHandle& contents);

private:
    QPDF& FPdf;
    std::unordered_map<quint64, std::string> FKnown; // pages often share a stream
};
