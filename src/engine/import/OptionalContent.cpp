#include "engine/import/OptionalContent.h"

namespace {

QPDFObjectHandle Properties(QPDF& pdf) {
    return Entry(pdf.getRoot(), "/OCProperties");
}

/// The entry, made where it is missing or of another type.
QPDFObjectHandle Require(QPDFObjectHandle dict, const char* key, const QPDFObjectHandle& made) {
    QPDFObjectHandle value = dict.getKey(key);
    if (value.isArray() == QPDFObjectHandle(made).isArray() &&
        value.isDictionary() == QPDFObjectHandle(made).isDictionary())
        return value;
    dict.replaceKey(key, made);
    return dict.getKey(key);
}

std::unordered_set<quint64> Members(QPDFObjectHandle array) {
    std::unordered_set<quint64> members;
    if (array.isArray())
        for (const QPDFObjectHandle& item : array.getArrayAsVector())
            members.insert(KeyOf(item));
    return members;
}

} // namespace

void JoinOptionalContent(TObjectCopier& copier, QPDF& target) {
    QPDFObjectHandle from = Properties(*copier.Source()->Pdf);
    QPDFObjectHandle groups = Entry(from, "/OCGs");
    if (copier.SameFile() || !groups.isArray())
        return;
    QPDFObjectHandle config = Entry(from, "/D");
    const bool offAtFirst = IsName(Entry(config, "/BaseState"), "/OFF");
    const auto on = Members(Entry(config, "/ON"));
    const auto off = Members(Entry(config, "/OFF"));
    for (const QPDFObjectHandle& group : groups.getArrayAsVector()) {
        QPDFObjectHandle copy = copier.Find(group);
        if (copy.isNull())
            continue;
        QPDFObjectHandle to = Require(target.getRoot(), "/OCProperties", QPDFObjectHandle::newDictionary());
        Require(to, "/OCGs", QPDFObjectHandle::newArray()).appendItem(copy);
        QPDFObjectHandle defaults = Require(to, "/D", QPDFObjectHandle::newDictionary());
        const bool isOff = off.contains(KeyOf(group)) || (offAtFirst && !on.contains(KeyOf(group)));
        Require(defaults, isOff ? "/OFF" : "/ON", QPDFObjectHandle::newArray()).appendItem(copy);
    }
}
