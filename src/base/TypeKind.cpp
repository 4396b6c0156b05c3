#include "base/TypeKind.h"

#include <QSequentialIterable>

#include <limits>
#include <vector>

namespace {

template <class T> std::optional<QVariant> Fit(qint64 whole) {
    if (whole < qint64(std::numeric_limits<T>::min()))
        return std::nullopt;
    if constexpr (sizeof(T) < sizeof whole) {
        if (whole > qint64(std::numeric_limits<T>::max()))
            return std::nullopt;
    }
    return QVariant::fromValue(T(whole));
}

/// A colour with its top byte set is negative where it went through a signed number.
template <class T> std::optional<QVariant> Bits(qint64 whole) {
    if (whole < std::numeric_limits<qint32>::min() || whole > std::numeric_limits<quint32>::max())
        return std::nullopt;
    return QVariant::fromValue(T(quint32(quint64(whole))));
}

template <class T> std::optional<QVariant> Text(const string& text) {
    return QVariant::fromValue(T(text));
}
template <> std::optional<QVariant> Text<NarrowString>(const string& text) {
    return Narrow(text);
}
/// No name of a file goes on behind a NUL.
template <> std::optional<QVariant> Text<TFileName>(const string& text) {
    return text.contains(QChar::Null) ? std::nullopt : std::optional(QVariant::fromValue(TFileName(text)));
}

template <class T> string TextOf(const QVariant& value) {
    return value.value<T>();
}
template <> string TextOf<NarrowString>(const QVariant& value) {
    return Widen(value.toByteArray());
}

template <class T> TTypeRow WholeRow(const char* name = nullptr) {
    const TTypeKind kind = std::numeric_limits<T>::is_signed ? TTypeKind::Signed : TTypeKind::Unsigned;
    return {.Kind = kind, .Name = name, .FromWhole = Fit<T>};
}

template <class T> TTypeRow TextRow(const char* name = nullptr) {
    return {.Kind = TTypeKind::Text, .Name = name, .FromText = Text<T>, .ToText = TextOf<T>};
}

template <class T> TTypeRow ColorRow() {
    return {.Kind = TTypeKind::Color, .FromWhole = Bits<T>};
}

struct TNumbered {
    int Id;
    TTypeRow Row;
};

/// What is met most often first.
const std::vector<TNumbered>& Rows() {
    static const std::vector<TNumbered> rows = [] {
        TTypeRow nullable = TextRow<PWideChar>("string or null");
        nullable.TakesNull = true;
        return std::vector<TNumbered>{
            {QMetaType::QString, TextRow<string>("string")},
            {QMetaType::Bool, {.Kind = TTypeKind::TruthValue, .Name = "Boolean"}},
            {QMetaType::Int, WholeRow<int>("Integer")},
            {QMetaType::Double, {.Kind = TTypeKind::Float, .Name = "Double"}},
            {QMetaType::Float, {.Kind = TTypeKind::Float, .Name = "Single"}},
            {QMetaType::UInt, WholeRow<uint>("Cardinal")},
            {QMetaType::LongLong, WholeRow<qlonglong>("Int64")},
            {QMetaType::ULongLong, WholeRow<qulonglong>("UInt64")},
            {qMetaTypeId<TFileName>(), TextRow<TFileName>()},
            {qMetaTypeId<TColor>(), ColorRow<TColor>()},
            {qMetaTypeId<ARGB>(), ColorRow<ARGB>()},
            {qMetaTypeId<TFontName>(), TextRow<TFontName>()},
            {qMetaTypeId<PWideChar>(), nullable},
            {QMetaType::QByteArray, TextRow<NarrowString>("string")},
            {QMetaType::QStringList, {.Kind = TTypeKind::List, .Name = "array of string"}},
            {QMetaType::Char, WholeRow<char>()},
            {QMetaType::SChar, WholeRow<signed char>()},
            {QMetaType::UChar, WholeRow<uchar>()},
            {QMetaType::Short, WholeRow<short>()},
            {QMetaType::UShort, WholeRow<ushort>()},
            {QMetaType::Long, WholeRow<long>()},
            {QMetaType::ULong, WholeRow<ulong>()},
            {QMetaType::Void, {.Kind = TTypeKind::None}},
            {QMetaType::UnknownType, {.Kind = TTypeKind::None}},
        };
    }();
    return rows;
}

} // namespace

const TTypeRow& RowOf(QMetaType type) {
    static const TTypeRow enumeration{.Kind = TTypeKind::Enumeration};
    static const TTypeRow record{.Kind = TTypeKind::Record};
    static const TTypeRow object{.Kind = TTypeKind::Object, .TakesNull = true};
    static const TTypeRow list{.Kind = TTypeKind::List};
    static const TTypeRow other;
    const int id = type.id();
    for (const TNumbered& known : Rows())
        if (known.Id == id)
            return known.Row;
    const QMetaType::TypeFlags flags = type.flags();
    if (flags.testFlag(QMetaType::IsEnumeration))
        return enumeration;
    if (flags.testFlag(QMetaType::PointerToQObject))
        return object;
    if (flags.testFlag(QMetaType::IsGadget))
        return record;
    return QMetaType::canView(type, QMetaType::fromType<QSequentialIterable>()) ? list : other;
}
