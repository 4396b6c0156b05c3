#pragma once
// libqpdf and the conversions at its border. For the sources of this module only.
#include "base/Text.h"

#ifdef __clang__
// Clang 14, which the lint runs on, can't read this header of libqpdf as C++20, and we need nothing in it.
#define JSON_HH
class JSON {}; // complete, or headers that hold lists of it can't be precompiled
#endif

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <optional>

/// A key for hashed sets: libqpdf 11 gives object numbers no hash.
[[nodiscard]] inline quint64 KeyOf(QPDFObjGen og) {
    return quint64(quint32(og.getObj())) << 32 | quint32(og.getGen());
}
[[nodiscard]] inline quint64 KeyOf(const QPDFObjectHandle& object) {
    return KeyOf(object.getObjGen());
}

[[nodiscard]] inline string TextOf(QPDFObjectHandle object) {
    return QString::fromStdString(object.isString() ? object.getUTF8Value() : std::string());
}

/// A text string, in PDFDocEncoding where it can be, else in UTF-16.
[[nodiscard]] inline QPDFObjectHandle NewText(const string& text) {
    return QPDFObjectHandle::newUnicodeString(text.toStdString());
}

/// A dictionary's entry; null for anything that is no dictionary, where libqpdf would warn.
[[nodiscard]] inline QPDFObjectHandle Entry(QPDFObjectHandle object, const char* key) {
    return object.isDictionary() ? object.getKey(key) : QPDFObjectHandle::newNull();
}

[[nodiscard]] inline bool IsName(QPDFObjectHandle object, const char* name) {
    return object.isName() && object.getName() == name;
}
