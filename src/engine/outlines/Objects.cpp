#include "engine/outlines/Objects.h"

#include "engine/outlines/ObjectHandle.h"
#include "engine/pdf/Errors.h"

#include <cmath>

TPDFObjectPtr NewObject(const QPDFObjectHandle& object) {
    auto handle = std::make_shared<TPDFObject::THandle>(TPDFObject::THandle{object});
    QPDFObjectHandle typed = object;
    if (typed.isDictionary())
        return std::make_shared<TPDFDictionary>(std::move(handle));
    if (typed.isArray())
        return std::make_shared<TPDFArray>(std::move(handle));
    if (typed.isNumber())
        return std::make_shared<TPDFNumeric>(std::move(handle));
    return std::make_shared<TPDFObject>(std::move(handle));
}

void TPDFDictionary::Add(const NarrowString& key, const TPDFObjectPtr& value) {
    try {
        Handle().Object.replaceKey('/' + key.toStdString(), value->Handle().Object);
    } catch (const std::exception&) {
        throw EPDFError(QStringLiteral("The document that the object belongs to is no longer open."));
    }
}

TPDFObjectPtr TPDFObjectsList::NewNumeric(Double value) {
    constexpr int Decimals = 6;
    if (value == std::floor(value) && std::abs(value) <= std::numeric_limits<Integer>::max())
        return NewObject(QPDFObjectHandle::newInteger(qint64(value)));
    return NewObject(QPDFObjectHandle::newReal(value, Decimals));
}

TPDFObjectPtr TPDFObjectsList::NewArray(const TPDFObjectPtr* items, int high) {
    std::vector<QPDFObjectHandle> handles;
    for (int i = 0; i <= high; ++i)
        handles.push_back(items[i]->Handle().Object);
    return NewObject(QPDFObjectHandle::newArray(handles));
}
