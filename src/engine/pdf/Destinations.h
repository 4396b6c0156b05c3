#pragma once
// Where links, outline items and open actions lead: explicit and named destinations (ISO 32000-1, 12.3.2).
#include "engine/pdf/Qpdf.h"

#include <map>

class TDestinations {
public:
    explicit TDestinations(QPDF& pdf) : FPdf(pdf) {}

    /// The destination of an annotation, outline item or action: its /Dest, or the /D of its go-to action.
    /// Null if it has none.
    [[nodiscard]] static QPDFObjectHandle Of(const QPDFObjectHandle& holder);
    /// The page object that a destination, explicit or named, leads to; null if there is none.
    [[nodiscard]] QPDFObjectHandle PageOf(const QPDFObjectHandle& destination);
    /// The explicit destination behind a named one; itself for an explicit one; null where there is none.
    [[nodiscard]] QPDFObjectHandle Explicit(QPDFObjectHandle destination);

private:
    void ReadNames();

    QPDF& FPdf;
    bool FNamesRead = false;
    std::map<std::string, QPDFObjectHandle> FNames; // strings of the name tree, UTF-8
};
