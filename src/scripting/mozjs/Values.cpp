#include "scripting/mozjs/Values.h"

#include "base/Convert.h"
#include "base/Reflection.h"
#include "base/TypeKind.h"
#include "base/TypeNames.h"
#include "scripting/mozjs/Core.h"

#include <js/Array.h>
#include <js/BigInt.h>
#include <js/Conversions.h>
#include <js/ForOfIterator.h>
#include <js/Object.h>
#include <js/PropertyAndElement.h>
#include <js/String.h>

#include <QSequentialIterable>

#include <cmath>

namespace {

[[noreturn]] void Refuse(const string& what, const string& given, QMetaType target) {
    throw EConvertError(QStringLiteral("%1: %2 is no %3").arg(what, given, TypeNameWithValues(target)));
}

/// A text on its way into a call, which may hold many.
string ChargedText(JSContext* cx, JS::HandleString text) {
    TMozCore::Of(cx).Charge(JS_GetStringLength(text) * sizeof(char16_t));
    return TextOf(cx, text);
}

/// Numbers and Booleans have one spelling; an object has none that a path or a caption could be meant by, but
/// for an error, whose text says what happened.
string TextFrom(JSContext* cx, JS::HandleValue value, QMetaType target, const string& what) {
    if (value.isObject()) {
        JS::RootedObject object(cx, &value.toObject());
        if (JS_ErrorFromException(cx, object) == nullptr)
            Refuse(what, QStringLiteral("an object"), target);
    }
    JS::RootedString text(cx, Must(JS::ToString(cx, value)));
    return ChargedText(cx, text);
}

QVariant RecordFrom(TClassTable& classes, JS::HandleObject object, QMetaType target, const string& what) {
    JSContext* cx = classes.Context();
    const QMetaObject& type = *target.metaObject();
    QVariant record(target);
    JS::Rooted<JS::IdVector> ids(cx, JS::IdVector(cx));
    Must(JS_Enumerate(cx, object, &ids));
    for (size_t i = 0; i < ids.length(); ++i) {
        JS::RootedValue key(cx);
        JS::RootedValue value(cx);
        JS::RootedId id(cx, ids[i]);
        Must(JS_IdToValue(cx, id, &key) && JS_GetPropertyById(cx, object, id, &value));
        JS::RootedString keyText(cx, Must(JS::ToString(cx, key)));
        const string name = ChargedText(cx, keyText);
        const QMetaProperty member = type.property(type.indexOfProperty(Narrow(name).constData()));
        if (!member.isValid())
            throw EConvertError(
                QStringLiteral("%1: %2 has no member \"%3\".").arg(what, Reflection::ClassName(type), name));
        const string place = QStringLiteral("%1, member \"%2\"").arg(what, name);
        member.writeOnGadget(record.data(), ConvertTo(FromScript(classes, value, member.metaType(), place),
                                                      member.metaType(), place));
    }
    return record;
}

/// What an item of a list takes beside its text, at least.
constexpr size_t ItemBytes = 64;

QVariant ListFrom(TClassTable& classes, JS::HandleValue value, QMetaType target, const string& what) {
    JSContext* cx = classes.Context();
    QVariant list(target);
    auto items = list.view<QSequentialIterable>();
    const QMetaType itemType = items.metaContainer().valueMetaType();
    JS::ForOfIterator iterator(cx);
    Must(iterator.init(value, JS::ForOfIterator::AllowNonIterable));
    if (!iterator.valueIsIterable())
        Refuse(what, QStringLiteral("an object"), target);
    for (int index = 0;; ++index) {
        JS::RootedValue item(cx);
        bool done = false;
        Must(iterator.next(&item, &done));
        if (done)
            return list;
        TMozCore::Of(cx).Charge(ItemBytes);
        const string place = QStringLiteral("%1, item %2").arg(what).arg(index);
        items.addValue(ConvertTo(FromScript(classes, item, itemType, place), itemType, place));
    }
}

/// Whether its own members are all there is to it. A Map, a Date, a function, an array or an object of the
/// program would else be taken for a record of which nothing is given.
bool IsPlain(JSContext* cx, JS::HandleObject object) {
    js::ESClass kind = js::ESClass::Other;
    Must(JS::GetBuiltinClass(cx, object, &kind));
    return kind == js::ESClass::Object;
}

/// Raises EConvertError for one that has more than 64 bits.
QVariant WholeFrom(JS::BigInt* number, QMetaType target, const string& what) {
    qint64 whole = 0;
    quint64 large = 0;
    if (JS::BigIntFits(number, &whole))
        return whole;
    if (JS::BigIntFits(number, &large))
        return large;
    Refuse(what, QStringLiteral("a whole number of more than 64 bits"), target);
}

QVariant FromObject(TClassTable& classes, JS::HandleValue value, QMetaType target, const string& what) {
    JS::RootedObject object(classes.Context(), &value.toObject());
    switch (KindOf(target)) {
    case TTypeKind::Object:
        if (TClassTable::IsWrapper(*object))
            return QVariant::fromValue<QObject*>(&TClassTable::Unwrap(*object));
        break;
    case TTypeKind::Record:
        if (IsPlain(classes.Context(), object))
            return RecordFrom(classes, object, target, what);
        break;
    case TTypeKind::List:
        return ListFrom(classes, value, target, what);
    default:
        break;
    }
    Refuse(what, QStringLiteral("an object"), target);
}

void RecordTo(TClassTable& classes, const QVariant& record, JS::MutableHandleValue result) {
    JSContext* cx = classes.Context();
    JS::RootedObject object(cx, Must(JS_NewPlainObject(cx)));
    for (const QMetaProperty& member : Reflection::Members(*record.metaType().metaObject())) {
        JS::RootedValue value(cx);
        ToScript(classes, member.readOnGadget(record.constData()), TOwnership::Borrowed, &value);
        Must(JS_DefineProperty(cx, object, member.name(), value, JSPROP_ENUMERATE));
    }
    result.setObject(*object);
}

void ListTo(TClassTable& classes, const QVariant& list, JS::MutableHandleValue result) {
    JSContext* cx = classes.Context();
    const auto items = list.value<QSequentialIterable>();
    JS::RootedObject array(cx, Must(JS::NewArrayObject(cx, size_t(items.size()))));
    uint32_t index = 0;
    for (const QVariant& item : items) {
        JS::RootedValue value(cx);
        ToScript(classes, item, TOwnership::Borrowed, &value);
        Must(JS_DefineElement(cx, array, index++, value, JSPROP_ENUMERATE));
    }
    result.setObject(*array);
}

/// A number where that is exact, else a BigInt.
template <class T> void WholeTo(JSContext* cx, T whole, JS::MutableHandleValue result) {
    if (const auto number = double(whole); std::abs(number) < 9007199254740992.0) // 2^53
        result.setNumber(number);
    else
        result.setBigInt(Must(JS::NumberToBigInt(cx, whole)));
}

} // namespace

string TextOf(JSContext* cx, JS::HandleString text) {
    const size_t length = JS_GetStringLength(text);
    string result(qsizetype(length), Qt::Uninitialized);
    auto* units = reinterpret_cast<char16_t*>(result.data());
    Must(JS_CopyStringChars(cx, mozilla::Range<char16_t>(units, length), text));
    return result;
}

QVariant FromScript(TClassTable& classes, JS::HandleValue value, QMetaType target, const string& what) {
    JSContext* cx = classes.Context();
    const TTypeRow& row = RowOf(target);
    if (value.isNullOrUndefined()) {
        if (row.Kind == TTypeKind::Object || (value.isNull() && row.TakesNull))
            return QVariant(target);
        Refuse(what, value.isNull() ? QStringLiteral("null") : QStringLiteral("undefined"), target);
    }
    if (row.Kind == TTypeKind::Text && !value.isSymbol())
        return TextFrom(cx, value, target, what);
    if (value.isBoolean())
        return value.toBoolean();
    if (value.isNumber())
        return value.toNumber();
    if (value.isString()) {
        JS::RootedString text(cx, value.toString());
        return ChargedText(cx, text);
    }
    if (value.isBigInt())
        return WholeFrom(value.toBigInt(), target, what);
    if (value.isObject())
        return FromObject(classes, value, target, what);
    Refuse(what, QStringLiteral("a symbol"), target);
}

void ToScript(TClassTable& classes, const QVariant& value, TOwnership ownership,
              JS::MutableHandleValue result) {
    JSContext* cx = classes.Context();
    const QMetaType type = value.metaType();
    switch (KindOf(type)) {
    case TTypeKind::None:
        return result.setUndefined();
    case TTypeKind::TruthValue:
        return result.setBoolean(value.toBool());
    case TTypeKind::Float:
        return result.setNumber(value.toDouble());
    case TTypeKind::Unsigned:
        return WholeTo(cx, value.toULongLong(), result);
    case TTypeKind::Signed:
        return WholeTo(cx, value.toLongLong(), result);
    case TTypeKind::Enumeration:
        return result.setNumber(double(value.toLongLong()));
    case TTypeKind::Color:
        return result.setNumber(ConvertTo(value, QMetaType::fromType<quint32>(), {}).toUInt());
    case TTypeKind::Text: {
        const string text = ConvertTo(value, QMetaType::fromType<QString>(), {}).toString();
        return result.setString(Must(
            JS_NewUCStringCopyN(cx, reinterpret_cast<const char16_t*>(text.utf16()), size_t(text.size()))));
    }
    case TTypeKind::Record:
        return RecordTo(classes, value, result);
    case TTypeKind::List:
        return ListTo(classes, value, result);
    case TTypeKind::Object: {
        auto* object = value.value<QObject*>();
        return object ? result.setObject(*classes.Wrap(*object, ownership)) : result.setNull();
    }
    case TTypeKind::Other:
        break;
    }
    throw Exception(
        QStringLiteral("A value of type %1 has no form for scripts.").arg(QString::fromLatin1(type.name())));
}
