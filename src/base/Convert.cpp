#include "base/Convert.h"

#include "base/Exceptions.h"
#include "base/TypeKind.h"
#include "base/TypeNames.h"

#include <QObject>

#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace {

using Kind = TTypeKind;

bool IsNumber(Kind kind) {
    return kind == Kind::Signed || kind == Kind::Unsigned || kind == Kind::Float;
}

/// A whole number, if the value is one.
std::optional<qint64> WholeOf(const QVariant& value, Kind kind) {
    switch (kind) {
    case Kind::Signed:
        return value.toLongLong();
    case Kind::Unsigned: {
        const quint64 u = value.toULongLong();
        if (u > quint64(std::numeric_limits<qint64>::max()))
            return std::nullopt;
        return qint64(u);
    }
    case Kind::Float: {
        const double d = value.toDouble();
        // 2^63 itself is no longer a qint64; the comparison is exact in double precision.
        if (std::trunc(d) != d || d < -9223372036854775808.0 || d >= 9223372036854775808.0)
            return std::nullopt;
        return qint64(d);
    }
    case Kind::Color:
        return value.metaType() == QMetaType::fromType<TColor>() ? value.value<TColor>().Value
                                                                 : value.value<ARGB>().Value;
    case Kind::Enumeration:
        return EnumValueOf(value);
    default:
        return std::nullopt;
    }
}

std::optional<QVariant> ToWhole(const QVariant& value, Kind from, QMetaType target, const TTypeRow& to) {
    if (target.id() == QMetaType::ULongLong && from == Kind::Unsigned)
        return QVariant::fromValue(value.toULongLong());
    const auto whole = WholeOf(value, from);
    if (!whole || from == Kind::Enumeration)
        return std::nullopt;
    return to.FromWhole(*whole);
}

std::optional<QVariant> ToFloat(const QVariant& value, Kind from, QMetaType target) {
    if (!IsNumber(from))
        return std::nullopt;
    const double d = value.toDouble();
    if (target.id() == QMetaType::Double)
        return d;
    const auto f = float(d);
    if (std::isinf(f) && !std::isinf(d))
        return std::nullopt;
    return f;
}

std::optional<QVariant> ToText(const QVariant& value, const TTypeRow& from, const TTypeRow& to) {
    return from.ToText ? to.FromText(from.ToText(value)) : std::nullopt;
}

std::optional<QVariant> ToColor(const QVariant& value, Kind from, const TTypeRow& to) {
    const auto whole = WholeOf(value, from);
    return whole ? to.FromWhole(*whole) : std::nullopt;
}

std::optional<QVariant> ToEnumeration(const QVariant& value, const TTypeRow& from, QMetaType target) {
    const QMetaEnum names = EnumOf(target);
    if (!names.isValid())
        return std::nullopt;
    int key = -1;
    if (from.ToText) {
        const string text = from.ToText(value);
        for (int i = 0; i < names.keyCount(); ++i)
            if (SameText(QString::fromLatin1(names.key(i)), text))
                key = names.value(i);
        if (key < 0)
            return std::nullopt;
    } else {
        const auto whole = IsNumber(from.Kind) ? WholeOf(value, from.Kind) : std::nullopt;
        if (!whole || *whole < 0 || *whole > std::numeric_limits<int>::max() ||
            !names.valueToKey(int(*whole)))
            return std::nullopt;
        key = int(*whole);
    }
    QVariant result(target);
    const auto bits = quint64(key);
    std::memcpy(result.data(), &bits, size_t(target.sizeOf()));
    return result;
}

std::optional<QVariant> ToObject(const QVariant& value, Kind from, QMetaType target) {
    QObject* object = nullptr;
    if (from == Kind::Object)
        object = value.value<QObject*>();
    else if (value.isValid() && value.metaType().id() != QMetaType::Nullptr)
        return std::nullopt;
    if (object != nullptr && target.metaObject() != nullptr &&
        !object->metaObject()->inherits(target.metaObject()))
        return std::nullopt;
    return QVariant(target, &object);
}

} // namespace

QMetaEnum EnumOf(QMetaType type) {
    const QMetaObject* scope = type.metaObject();
    if (scope == nullptr)
        return {};
    const QByteArray full(type.name());
    const int colon = int(full.lastIndexOf(':'));
    return scope->enumerator(scope->indexOfEnumerator(full.mid(colon + 1).constData()));
}

qint64 EnumValueOf(const QVariant& value) {
    qint64 whole = 0; // enumerations are unsigned here, and the machine is little-endian
    std::memcpy(&whole, value.constData(), size_t(value.metaType().sizeOf()));
    return whole;
}

QVariant ConvertTo(const QVariant& value, QMetaType target, const string& what) {
    if (value.metaType() == target)
        return value;
    const TTypeRow& from = RowOf(value.metaType());
    const TTypeRow& to = RowOf(target);
    std::optional<QVariant> result;
    switch (to.Kind) {
    case Kind::Signed:
    case Kind::Unsigned:
        result = ToWhole(value, from.Kind, target, to);
        break;
    case Kind::Float:
        result = ToFloat(value, from.Kind, target);
        break;
    case Kind::Text:
        result = ToText(value, from, to);
        break;
    case Kind::Color:
        result = ToColor(value, from.Kind, to);
        break;
    case Kind::Enumeration:
        result = ToEnumeration(value, from, target);
        break;
    case Kind::Object:
        result = ToObject(value, from.Kind, target);
        break;
    default:
        break;
    }
    if (result)
        return *result;
    string given = from.ToText ? u'"' + from.ToText(value) + u'"' : value.toString();
    given.replace(QChar::Null, QStringLiteral("\\0")); // or messages end there
    throw EConvertError(QStringLiteral("%1: %2 is no %3")
                            .arg(what, given.isEmpty() ? QString::fromLatin1(value.metaType().name()) : given,
                                 TypeNameWithValues(target)));
}
