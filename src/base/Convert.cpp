#include "base/Convert.h"

#include "base/Exceptions.h"
#include "base/TypeNames.h"

#include <QObject>

#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace {

enum class Kind { Boolean, Signed, Unsigned, Float, Text, Color, Enumeration, Object, Other };

Kind KindOf(QMetaType type) {
    switch (type.id()) {
    case QMetaType::Bool:
        return Kind::Boolean;
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return Kind::Signed;
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return Kind::Unsigned;
    case QMetaType::Float:
    case QMetaType::Double:
        return Kind::Float;
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return Kind::Text;
    default:
        break;
    }
    if (type == QMetaType::fromType<TFileName>() || type == QMetaType::fromType<TFontName>() ||
        type == QMetaType::fromType<PWideChar>())
        return Kind::Text;
    if (type == QMetaType::fromType<TColor>() || type == QMetaType::fromType<ARGB>())
        return Kind::Color;
    if (type.flags().testFlag(QMetaType::IsEnumeration))
        return Kind::Enumeration;
    if (type.flags().testFlag(QMetaType::PointerToQObject))
        return Kind::Object;
    return Kind::Other;
}

string TextOf(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<TFileName>())
        return value.value<TFileName>();
    if (value.metaType() == QMetaType::fromType<TFontName>())
        return value.value<TFontName>();
    if (value.metaType() == QMetaType::fromType<PWideChar>())
        return value.value<PWideChar>();
    if (value.metaType() == QMetaType::fromType<QByteArray>())
        return Widen(value.toByteArray());
    return value.toString();
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
    case Kind::Enumeration: {
        qint64 whole = 0; // enumerations are unsigned here, and the machine is little-endian
        std::memcpy(&whole, value.constData(), size_t(value.metaType().sizeOf()));
        return whole;
    }
    default:
        return std::nullopt;
    }
}

template <class T> std::optional<QVariant> Fit(qint64 whole) {
    if (whole < qint64(std::numeric_limits<T>::min()))
        return std::nullopt;
    if constexpr (sizeof(T) < 8) {
        if (whole > qint64(std::numeric_limits<T>::max()))
            return std::nullopt;
    }
    return QVariant::fromValue(T(whole));
}

std::optional<QVariant> ToWhole(const QVariant& value, Kind from, QMetaType target) {
    if (target.id() == QMetaType::ULongLong && from == Kind::Unsigned)
        return QVariant::fromValue(value.toULongLong());
    const auto whole = WholeOf(value, from);
    if (!whole || from == Kind::Enumeration)
        return std::nullopt;
    switch (target.id()) {
    case QMetaType::Char:
        return Fit<char>(*whole);
    case QMetaType::SChar:
        return Fit<signed char>(*whole);
    case QMetaType::UChar:
        return Fit<uchar>(*whole);
    case QMetaType::Short:
        return Fit<short>(*whole);
    case QMetaType::UShort:
        return Fit<ushort>(*whole);
    case QMetaType::Int:
        return Fit<int>(*whole);
    case QMetaType::UInt:
        return Fit<uint>(*whole);
    case QMetaType::Long:
        return Fit<long>(*whole);
    case QMetaType::ULong:
        return Fit<ulong>(*whole);
    case QMetaType::LongLong:
        return Fit<qlonglong>(*whole);
    case QMetaType::ULongLong:
        return Fit<qulonglong>(*whole);
    default:
        return std::nullopt;
    }
}

std::optional<QVariant> ToFloat(const QVariant& value, Kind from, QMetaType target) {
    if (from != Kind::Float && from != Kind::Signed && from != Kind::Unsigned)
        return std::nullopt;
    const double d = value.toDouble();
    if (target.id() == QMetaType::Double)
        return d;
    const auto f = float(d);
    if (std::isinf(f) && !std::isinf(d))
        return std::nullopt;
    return f;
}

std::optional<QVariant> ToText(const QVariant& value, Kind from, QMetaType target) {
    if (from != Kind::Text)
        return std::nullopt;
    const string text = TextOf(value);
    if (target == QMetaType::fromType<TFileName>())
        return text.contains(QChar::Null) ? std::nullopt
                                          : std::optional(QVariant::fromValue(TFileName(text)));
    if (target == QMetaType::fromType<PWideChar>())
        return QVariant::fromValue(PWideChar(text));
    if (target == QMetaType::fromType<TFontName>())
        return QVariant::fromValue(TFontName(text));
    if (target == QMetaType::fromType<QByteArray>())
        return Narrow(text);
    return text;
}

std::optional<QVariant> ToColor(const QVariant& value, Kind from, QMetaType target) {
    const auto whole = WholeOf(value, from);
    // A colour with its top byte set is negative where it went through a signed number.
    if (!whole || *whole < std::numeric_limits<qint32>::min() || *whole > std::numeric_limits<quint32>::max())
        return std::nullopt;
    const auto bits = quint32(quint64(*whole));
    return target == QMetaType::fromType<TColor>() ? QVariant::fromValue(TColor(bits))
                                                   : QVariant::fromValue(ARGB(bits));
}

std::optional<QVariant> ToEnumeration(const QVariant& value, Kind from, QMetaType target) {
    const QMetaEnum names = EnumOf(target);
    if (!names.isValid() ||
        (from != Kind::Text && from != Kind::Signed && from != Kind::Unsigned && from != Kind::Float))
        return std::nullopt;
    int key = -1;
    if (from == Kind::Text) {
        for (int i = 0; i < names.keyCount(); ++i)
            if (SameText(QString::fromLatin1(names.key(i)), TextOf(value)))
                key = names.value(i);
        if (key < 0)
            return std::nullopt;
    } else {
        const auto whole = WholeOf(value, from);
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

QVariant ConvertTo(const QVariant& value, QMetaType target, const string& what) {
    if (value.metaType() == target)
        return value;
    const Kind from = KindOf(value.metaType());
    std::optional<QVariant> result;
    switch (KindOf(target)) {
    case Kind::Signed:
    case Kind::Unsigned:
        result = ToWhole(value, from, target);
        break;
    case Kind::Float:
        result = ToFloat(value, from, target);
        break;
    case Kind::Text:
        result = ToText(value, from, target);
        break;
    case Kind::Color:
        result = ToColor(value, from, target);
        break;
    case Kind::Enumeration:
        result = ToEnumeration(value, from, target);
        break;
    case Kind::Object:
        result = ToObject(value, from, target);
        break;
    case Kind::Boolean:
    case Kind::Other:
        break;
    }
    if (result)
        return *result;
    string given = from == Kind::Text ? u'"' + TextOf(value) + u'"' : value.toString();
    given.replace(QChar::Null, QStringLiteral("\\0")); // or messages end there
    throw EConvertError(QStringLiteral("%1: %2 is no %3")
                            .arg(what, given.isEmpty() ? QString::fromLatin1(value.metaType().name()) : given,
                                 TypeNameWithValues(target)));
}
