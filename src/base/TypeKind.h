#pragma once
// What the types of members, parameters and values are: the one table that conversion (base/Convert), the
// forms in XML (xml/Lexical, xml/Instance), scripts (scripting/mozjs/Values) and the names of types
// (base/TypeNames) go by.
#include "base/Text.h"

#include <QVariant>

#include <optional>

enum class TTypeKind : quint8 {
    None, ///< no value: the result of a procedure
    TruthValue,
    Signed, ///< whole numbers
    Unsigned,
    Float,
    Text,
    Color,
    Enumeration,
    Record, ///< held by value, with members of its own
    Object, ///< by pointer
    List,   ///< a container of values, held by value
    Other
};

/// What is told of a type, or of all types of a kind where each works alike. Functions are null where they
/// make no sense.
struct TTypeRow {
    TTypeKind Kind = TTypeKind::Other;
    const char* Name =
        nullptr; ///< as scripts know it; null where it is the one that the table of classes has
    /// Whether a script may give null. Such a type has no form in XML, which has no word for it.
    bool TakesNull = false;
    /// The value for a whole number, a colour's bits among them; none where the number doesn't fit.
    std::optional<QVariant> (*FromWhole)(qint64 whole) = nullptr;
    /// The value for a text, and the other way; none where the type can't hold the text.
    std::optional<QVariant> (*FromText)(const string& text) = nullptr;
    string (*ToText)(const QVariant& value) = nullptr;
};

/// Good for the life of the program.
[[nodiscard]] const TTypeRow& RowOf(QMetaType type);
[[nodiscard]] inline TTypeKind KindOf(QMetaType type) {
    return RowOf(type).Kind;
}
