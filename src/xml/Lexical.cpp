#include "xml/Lexical.h"

#include "base/Convert.h"
#include "base/Exceptions.h"
#include "base/TypeKind.h"
#include "base/TypeNames.h"
#include "xml/XmlEscape.h"

#include <array>
#include <charconv>
#include <optional>

namespace Lexical {
namespace {

[[noreturn]] void Raise(const string& text, const string& expected) {
    const string shown = text.size() > 80 ? text.left(80) + QStringLiteral("...") : text;
    throw EConvertError(QStringLiteral("\"%1\" is no %2").arg(shown, expected));
}

template <class T> string Shortest(T number) {
    std::array<char, 64> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

string FormatText(const QVariant& value) {
    const string text = ConvertTo(value, QMetaType::fromType<QString>(), QStringLiteral("text")).toString();
    if (value.metaType().id() == QMetaType::QByteArray && Narrow(text) != value.toByteArray())
        throw EConvertError(QStringLiteral("text that is not valid UTF-8 cannot be stored"));
    return EscapeForbidden(text);
}

string FormatEnumeration(const QVariant& value) {
    const QMetaEnum names = EnumOf(value.metaType());
    const qint64 whole = EnumValueOf(value);
    const char* key = names.isValid() ? names.valueToKey(int(whole)) : nullptr;
    if (key == nullptr)
        Raise(QString::number(whole), QStringLiteral("value of ") + QString::fromLatin1(value.typeName()));
    return QString::fromLatin1(key);
}

/// A number in the whole of the text, as from_chars reads it; a sign "+" is taken too.
template <class T, class... TBase> std::optional<T> Number(const string& text, TBase... base) {
    QByteArray latin = text.toLatin1();
    if (latin.startsWith('+') && !latin.startsWith("+-"))
        latin.remove(0, 1);
    T number{};
    const char* end = latin.constData() + latin.size();
    const auto [stopped, error] = std::from_chars(latin.constData(), end, number, base...);
    if (error != std::errc() || stopped != end)
        return std::nullopt;
    return number;
}

QVariant ParseBoolean(const string& text) {
    if (SameText(text, u"true") || text == u"1")
        return true;
    if (SameText(text, u"false") || text == u"0")
        return false;
    Raise(text, QStringLiteral("Boolean (true or false)"));
}

/// 64 bits of either sign, or none.
QVariant Whole(const string& text) {
    if (const auto number = Number<qint64>(text))
        return QVariant::fromValue(*number);
    if (const auto number = Number<quint64>(text))
        return QVariant::fromValue(*number);
    return {};
}

QVariant ParseInteger(const string& text, QMetaType type) {
    const QVariant whole = Whole(text);
    if (!whole.isValid())
        Raise(text, QStringLiteral("whole number"));
    try {
        return ConvertTo(whole, type, string());
    } catch (const EConvertError&) {
        Raise(text, QStringLiteral("whole number of %1 bits").arg(type.sizeOf() * 8));
    }
}

QVariant ParseFloat(const string& text, QMetaType type) {
    if (type.id() == QMetaType::Float) {
        if (const auto number = Number<float>(text))
            return *number;
    } else if (const auto number = Number<double>(text)) {
        return *number;
    }
    Raise(text, QStringLiteral("number (as 12.5)"));
}

QVariant ParseColor(const string& text, QMetaType type) {
    QVariant bits = Whole(text);
    if (text.startsWith(u"0x", Qt::CaseInsensitive)) {
        const auto number = Number<quint32>(text.mid(2), 16);
        bits = number && text[2] != u'+' ? QVariant::fromValue(*number) : QVariant();
    }
    try {
        return ConvertTo(bits, type, string());
    } catch (const EConvertError&) {
        Raise(text, QStringLiteral("colour (as 0xFF336699)"));
    }
}

QVariant ParseEnumeration(const string& text, QMetaType type) {
    const QVariant whole = Whole(text);
    try {
        return ConvertTo(whole.isValid() ? whole : QVariant(text), type, string());
    } catch (const EConvertError&) {
        Raise(text, TypeNameWithValues(type));
    }
}

} // namespace

bool IsSimple(QMetaType type) {
    const TTypeRow& row = RowOf(type);
    switch (row.Kind) {
    case TTypeKind::TruthValue:
    case TTypeKind::Signed:
    case TTypeKind::Unsigned:
    case TTypeKind::Float:
    case TTypeKind::Text:
    case TTypeKind::Color:
    case TTypeKind::Enumeration:
        return !row.TakesNull;
    default:
        return false;
    }
}

string Format(const QVariant& value) {
    const QMetaType type = value.metaType();
    switch (KindOf(type)) {
    case TTypeKind::Text:
        return FormatText(value);
    case TTypeKind::TruthValue:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case TTypeKind::Float:
        return type.id() == QMetaType::Float ? Shortest(value.toFloat()) : Shortest(value.toDouble());
    case TTypeKind::Enumeration:
        return FormatEnumeration(value);
    case TTypeKind::Color: {
        const QVariant bits = ConvertTo(value, QMetaType::fromType<quint32>(), QStringLiteral("colour"));
        return QString::asprintf("0x%08X", bits.toUInt());
    }
    case TTypeKind::Unsigned:
        return QString::number(value.toULongLong());
    default:
        return QString::number(
            ConvertTo(value, QMetaType::fromType<qint64>(), QStringLiteral("number")).toLongLong());
    }
}

QVariant Parse(const string& text, QMetaType type) {
    switch (KindOf(type)) {
    case TTypeKind::Text:
        return ConvertTo(UnescapeForbidden(text), type, QStringLiteral("text"));
    case TTypeKind::TruthValue:
        return ParseBoolean(text.trimmed());
    case TTypeKind::Float:
        return ParseFloat(text.trimmed(), type);
    case TTypeKind::Enumeration:
        return ParseEnumeration(text.trimmed(), type);
    case TTypeKind::Color:
        return ParseColor(text.trimmed(), type);
    default:
        return ParseInteger(text.trimmed(), type);
    }
}

} // namespace Lexical
