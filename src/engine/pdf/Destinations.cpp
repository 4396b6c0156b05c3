#include "engine/pdf/Destinations.h"

#include <qpdf/QPDFNameTreeObjectHelper.hh>

QPDFObjectHandle TDestinations::Of(const QPDFObjectHandle& holder) {
    QPDFObjectHandle dest = Entry(holder, "/Dest");
    if (!dest.isNull())
        return dest;
    QPDFObjectHandle action = Entry(holder, "/A");
    if (!IsName(Entry(action, "/S"), "/GoTo"))
        return QPDFObjectHandle::newNull();
    return action.getKey("/D");
}

QPDFObjectHandle TDestinations::PageOf(const QPDFObjectHandle& destination) {
    QPDFObjectHandle found = Explicit(destination);
    if (!found.isArray() || found.getArrayNItems() == 0)
        return QPDFObjectHandle::newNull();
    return found.getArrayItem(0);
}

QPDFObjectHandle TDestinations::Explicit(QPDFObjectHandle destination) {
    if (destination.isName()) // of PDF 1.1, in a dictionary
        destination = Entry(Entry(FPdf.getRoot(), "/Dests"), destination.getName().c_str());
    else if (destination.isString()) {
        ReadNames();
        const auto found = FNames.find(destination.getUTF8Value());
        destination = found == FNames.end() ? QPDFObjectHandle::newNull() : found->second;
    }
    return destination.isDictionary() ? destination.getKey("/D") : destination;
}

void TDestinations::ReadNames() {
    if (std::exchange(FNamesRead, true))
        return;
    QPDFObjectHandle tree = Entry(Entry(FPdf.getRoot(), "/Names"), "/Dests");
    if (!tree.isDictionary())
        return;
    try {
        QPDFNameTreeObjectHelper names(tree, FPdf, /*auto_repair*/ false);
        for (const auto& [name, value] : names)
            FNames.emplace(name, value);
    } catch (const std::exception&) {
        return; // a damaged tree knows the names that came before the damage
    }
}
