#pragma once
// Text and the small value types that members and parameters are declared with.
//
// TFileName, TFontName, PWideChar and TColor are types of their own, not aliases: the run-time tables hand
// out resolved type names, and forms and files must still tell a path from a caption and a colour from a
// count.
#include <QByteArray>
#include <QMetaType>
#include <QString>

using string = QString;
using NarrowString = QByteArray; ///< 8-bit text in the locale's encoding, which is UTF-8 here.
using Single = float;
using Double = double;
using Integer = qint32;
using Int64 = qint64;
using Cardinal = quint32;
using Boolean = bool;

struct TFileName : QString {
    using QString::QString;
    TFileName() = default;
    TFileName(const QString& text) : QString(text) {}
};

struct TFontName : QString {
    using QString::QString;
    TFontName() = default;
    TFontName(const QString& text) : QString(text) {}
};

/// A text that may be null, which scripts have a word for; null and empty are the same here.
struct PWideChar : QString {
    using QString::QString;
    PWideChar() = default;
    PWideChar(const QString& text) : QString(text) {}
};

/// A colour 0xAABBGGRR, red in the low byte; the top byte is zero or an alpha, as its user says.
struct TColor {
    quint32 Value = 0;
    constexpr TColor() = default;
    constexpr TColor(quint32 value) : Value(value) {}
    constexpr operator quint32() const { return Value; }
};

/// A colour 0xAARRGGBB, alpha on top.
struct ARGB {
    quint32 Value = 0;
    constexpr ARGB() = default;
    constexpr ARGB(quint32 value) : Value(value) {}
    constexpr operator quint32() const { return Value; }
};

/// Compares with A to Z folded and nothing else: names that differ in the case of a letter beyond ASCII
/// are different names. Negative, zero or positive as `a` sorts before, with or behind `b`.
[[nodiscard]] int CompareText(QStringView a, QStringView b);
[[nodiscard]] inline bool SameText(QStringView a, QStringView b) {
    return CompareText(a, b) == 0;
}

[[nodiscard]] inline NarrowString Narrow(const QString& text) {
    return text.toUtf8();
}
[[nodiscard]] inline string Widen(const NarrowString& text) {
    return QString::fromUtf8(text);
}
