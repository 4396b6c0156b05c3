#include "engine/document/Document.h"
#include "scripting/ScriptDocument.h"

TPDFIndirect* TJSPDFDocument::NewOutline(TPDFIndirect* Parent, const string& Text, int pageNumber,
                                         TPDFLinkDestKind destination) {
    if (Document().GetCanModifyOutlines())
        Document().NewOutline(Parent, Narrow(Text), pageNumber, destination);
    return nullptr;
}

TPDFIndirect* TJSPDFDocument::GetFirstOutline() {
    return Document().FirstOutline();
}

TPDFIndirect* TJSPDFDocument::GetFirstChildOutline(TPDFIndirect* Outline) {
    return Document().FirstChildOutline(Outline);
}

TPDFIndirect* TJSPDFDocument::GetNextOutline(TPDFIndirect* Outline) {
    return Document().NextOutline(Outline);
}

TPDFIndirect* TJSPDFDocument::GetPrevOutline(TPDFIndirect* Outline) {
    return Document().PrevOutline(Outline);
}

int TJSPDFDocument::GetOutlineCount() {
    return Document().OutlineCount();
}

bool TJSPDFDocument::SetOutlineColor(TPDFIndirect* Outline, TColor Color) {
    TZQPDFDocument& document = Document();
    if (!document.GetCanModifyOutlines() || !document.OwnsReference(Outline))
        return false;
    auto* item = dynamic_cast<TPDFDictionary*>(Outline->Obj().get());
    if (item == nullptr)
        return false;
    const auto part = [&](int shift) {
        return TPDFObjectsList::NewNumeric((Color.Value >> shift & 0xFF) / 255.0);
    };
    const TPDFObjectPtr parts[] = {part(0), part(8), part(16)}; // red, green, blue
    item->Add("C", TPDFObjectsList::NewArray(parts, 2));
    return false; // on purpose; callers look at the item
}
