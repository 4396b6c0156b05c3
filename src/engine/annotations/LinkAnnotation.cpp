#include "engine/annotations/LinkAnnotation.h"

#include "engine/layers/Drawing.h"
#include "engine/pages/PageObject.h"
#include "engine/pages/Pages.h"

#include <algorithm>
#include <cmath>

namespace {

/// A URI is ASCII without blanks (ISO 32000-1, table 206).
std::string EscapedUri(const NarrowString& uri) {
    std::string result;
    for (const char c : uri.trimmed()) {
        if (c > ' ' && c < 0x7F)
            result += c;
        else
            result += '%' + QByteArray(1, c).toHex().toUpper().toStdString();
    }
    return result;
}

/// The whole width of the page, from its top as displayed, as large as the reader has it.
QPDFObjectHandle NewDestination(const TZQPDFPage& page) {
    const TPageBox top = page.Geometry().ToUserSpace(0, 0, 0, 0);
    QPDFObjectHandle destination = QPDFObjectHandle::newArray();
    destination.appendItem(page.Object().Dict);
    destination.appendItem(QPDFObjectHandle::newName("/XYZ"));
    destination.appendItem(QPDFObjectHandle::newReal(top.x0));
    destination.appendItem(QPDFObjectHandle::newReal(top.y0));
    destination.appendItem(QPDFObjectHandle::newNull());
    return destination;
}

} // namespace

TZQPDFLinkAnnotation::TZQPDFLinkAnnotation(TZQPDFPage& target, TZQLayerCollection* collection)
    : TZQPDFAnnotation(collection), FTarget(target.Handle()) {}

TZQPDFLinkAnnotation::TZQPDFLinkAnnotation(TZQLayerCollection* collection, const NarrowString& uri)
    : TZQPDFAnnotation(collection), FUri(uri) {}

TZQPDFLinkAnnotation* TZQPDFLinkAnnotation::CreateURI(TZQPDFDocument& /*document*/,
                                                      TZQLayerCollection* collection, Single x1, Single y1,
                                                      Single x2, Single y2, const NarrowString& uri) {
    auto* link = new TZQPDFLinkAnnotation(collection, uri);
    link->SetBounds(
        TGPRectF::Create(std::min(x1, x2), std::min(y1, y2), std::abs(x2 - x1), std::abs(y2 - y1)));
    return link;
}

bool TZQPDFLinkAnnotation::WriteEntries(TAnnotationDrawing& /*to*/, QPDFObjectHandle& annotation) {
    if (FUri) {
        QPDFObjectHandle action = QPDFObjectHandle::newDictionary();
        action.replaceKey("/S", QPDFObjectHandle::newName("/URI"));
        action.replaceKey("/URI", QPDFObjectHandle::newString(EscapedUri(*FUri)));
        annotation.replaceKey("/A", action);
    } else if (const auto target = FTarget.lock()) {
        annotation.replaceKey("/Dest", NewDestination(*target));
    } else {
        return false;
    }
    QPDFObjectHandle border = QPDFObjectHandle::newArray();
    for (int i = 0; i < 3; ++i)
        border.appendItem(QPDFObjectHandle::newInteger(0));
    annotation.replaceKey("/Border", border);
    return true;
}
