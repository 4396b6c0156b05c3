#include "engine/import/ObjectCopier.h"

TObjectCopier::TObjectCopier(QPDF& target, TPDFSourcePtr source)
    : FTarget(target), FSource(std::move(source)), FSameFile(FSource->Pdf.get() == &target) {
    if (FSameFile)
        return;
    for (const TWalkedPage& page : FSource->Walk.Pages)
        if (page.Dict.isIndirect())
            FSourcePages.insert(KeyOf(page.Dict));
}

QPDFObjectHandle TObjectCopier::Copy(const QPDFObjectHandle& object) {
    return object.isIndirect() ? Reference(object) : Value(object);
}

QPDFObjectHandle TObjectCopier::Find(const QPDFObjectHandle& object) const {
    const auto found = FShared.find(KeyOf(object));
    return found == FShared.end() ? QPDFObjectHandle::newNull() : found->second;
}

QPDFObjectHandle TObjectCopier::Reference(const QPDFObjectHandle& object) {
    const quint64 key = KeyOf(object);
    if (const auto found = FLocal.find(key); found != FLocal.end())
        return found->second;
    if (const auto found = FPages.find(key); found != FPages.end())
        return found->second;
    if (FSameFile)
        return object;
    if (const auto found = FShared.find(key); found != FShared.end())
        return found->second;
    QPDFObjectHandle from = object;
    if (FSourcePages.contains(key) || IsName(Entry(from, "/Type"), "/Page") ||
        IsName(Entry(from, "/Type"), "/Pages"))
        return QPDFObjectHandle::newNull();
    if (from.isNull())
        return QPDFObjectHandle::newNull();
    // Not null at first: a dictionary drops entries whose value is null.
    QPDFObjectHandle to =
        from.isStream() ? FTarget.newStream() : FTarget.makeIndirectObject(QPDFObjectHandle::newDictionary());
    FShared.emplace(key, to);
    FWaiting.emplace_back(from, to);
    return to;
}

QPDFObjectHandle TObjectCopier::Value(QPDFObjectHandle object) {
    if (object.isArray()) {
        std::vector<QPDFObjectHandle> items = object.getArrayAsVector();
        for (QPDFObjectHandle& item : items)
            item = Copy(item);
        return QPDFObjectHandle::newArray(items);
    }
    if (object.isDictionary()) {
        QPDFObjectHandle copy = QPDFObjectHandle::newDictionary();
        for (auto& [key, value] : object.getDictAsMap())
            copy.replaceKey(key, Copy(value));
        return copy;
    }
    return object.shallowCopy();
}

void TObjectCopier::CopyStream(QPDFObjectHandle from, QPDFObjectHandle to) {
    QPDFObjectHandle dict = to.getDict();
    for (auto& [key, value] : from.getDict().getDictAsMap())
        if (key != "/Length")
            dict.replaceKey(key, Copy(value));
    // The source must outlive the stream: its bytes are read when the document is written.
    to.replaceStreamData(
        [source = FSource, from](Pipeline* out, bool suppressWarnings, bool willRetry) {
            return QPDFObjectHandle(from).pipeStreamData(out, nullptr, 0, qpdf_dl_none, suppressWarnings,
                                                         willRetry);
        },
        dict.getKey("/Filter"), dict.getKey("/DecodeParms"));
}

void TObjectCopier::Finish() {
    while (!FWaiting.empty()) {
        const auto [from, to] = FWaiting.back();
        FWaiting.pop_back();
        QPDFObjectHandle object = from;
        if (object.isStream())
            CopyStream(object, to);
        else
            FTarget.replaceObject(to.getObjGen(), Value(object));
    }
}
