#include "bates/SchemeFields.h"

#include "base/Exceptions.h"
#include "base/TypeKind.h"
#include "bates/CommaText.h"
#include "xml/Lexical.h"
#include "xml/XmlEscape.h"

#include <array>
#include <charconv>
#include <cmath>

namespace {

/// The members of the record that stand in elements.
QList<QMetaProperty> Members() {
    QList<QMetaProperty> members = Reflection::Members(TZQPDFBatesSetting::staticMetaObject);
    members.removeFirst(); // the name
    return members;
}

QByteArray ElementOf(const QMetaProperty& member) {
    return QByteArray(member.name()).toLower();
}

string General(double number) {
    std::array<char, 64> buffer;
    const char* end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general, 15)
            .ptr;
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

string TextOf(const QMetaProperty& member, const QVariant& value) {
    switch (KindOf(member.metaType())) {
    case TTypeKind::Color:
        return QString::number(value.value<ARGB>().Value);
    case TTypeKind::TruthValue:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case TTypeKind::Float:
        return General(value.toDouble());
    case TTypeKind::Text:
        return TrimBlanks(value.toString());
    default:
        return QString::number(value.toInt());
    }
}

/// Not valid where the text is no such number.
QVariant NumberOf(const string& text, const QMetaProperty& member) {
    try {
        if (KindOf(member.metaType()) ==
            TTypeKind::Color) // 64 bits, of which the low ones count: -16777216 is 4278190080
            return QVariant::fromValue(
                ARGB(quint32(Lexical::Parse(text, QMetaType::fromType<Int64>()).toLongLong())));
        const QVariant number = Lexical::Parse(text, member.metaType());
        return std::isfinite(number.toDouble()) ? number : QVariant();
    } catch (const EConvertError&) {
        return {};
    }
}

QVariant ValueOf(const std::optional<string>& text, const QMetaProperty& member) {
    switch (KindOf(member.metaType())) {
    case TTypeKind::Text:
        return text.value_or(string());
    case TTypeKind::TruthValue:
        return text == QStringLiteral("1");
    default:
        return text ? NumberOf(*text, member) : QVariant();
    }
}

} // namespace

namespace SchemeFields {

void Write(const TZQPDFBatesSetting& scheme,
           const std::function<void(const QByteArray& element, const string& text)>& put) {
    for (const QMetaProperty& member : Members()) {
        const string text = TextOf(member, member.readOnGadget(&scheme));
        CheckXmlText(text, QString::fromLatin1(member.name()));
        put(ElementOf(member), text);
    }
}

void Read(TZQPDFBatesSetting& scheme,
          const std::function<std::optional<string>(const QByteArray& element)>& get) {
    for (const QMetaProperty& member : Members())
        if (const QVariant value = ValueOf(get(ElementOf(member)), member); value.isValid())
            member.writeOnGadget(&scheme, value);
}

void CheckXmlText(const string& text, const string& what) {
    for (qsizetype i = 0; i < text.size(); ++i)
        if (IsForbiddenInXml(text, i))
            throw Exception(QStringLiteral("%1 holds a character that a scheme file cannot: U+%2")
                                .arg(what, QString::asprintf("%04X", unsigned(text[i].unicode()))));
}

} // namespace SchemeFields
