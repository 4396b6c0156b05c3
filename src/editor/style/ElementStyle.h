#pragma once
// The parts of a language as data: keyword groups, bracket pairs, symbol sets and comment markers, each
// with its look.
#include "base/Text.h"
#include "editor/style/MemoFont.h"

#include <QSet>
#include <QStringList>

#include <memory>
#include <vector>

enum TStyleType { stKeyword, stBracket, stSymbol, stComment };

inline constexpr TColor clNone = 536870911; ///< no colour of its own
inline constexpr TColor clBlack = 0;
inline constexpr TColor clWhite = 0xFFFFFF;

/// A look without a typeface. A background of clNone is the control's own.
struct TCharStyle {
    TColor TextColor = clBlack;
    TColor BkColor = clWhite;
    TFontStyles Style = 0;
    bool operator==(const TCharStyle&) const = default;
};

/// Whoever shows text in these styles: it must paint again when they change.
class TStylesOwner {
public:
    virtual ~TStylesOwner() = default;
    virtual void StylesChanged() = 0;
    [[nodiscard]] virtual TColor BackgroundColor() const = 0;
};

class TElementStyles;

class TElementStyle {
public:
    explicit TElementStyle(TElementStyles* list = nullptr);
    void Assign(const TElementStyle& other);

    [[nodiscard]] TStyleType StyleType() const { return FStyleType; }
    void SetStyleType(TStyleType type) { Set(FStyleType, type); }
    [[nodiscard]] const QStringList& KeyWords() const { return FKeyWords; }
    void SetKeyWords(const QStringList& words);
    [[nodiscard]] const TMemoFont& Font() const { return FFont; }
    void SetFont(const TMemoFont& font) { Set(FFont, font); }
    [[nodiscard]] TColor BGColor() const { return FBGColor; }
    void SetBGColor(TColor color) { Set(FBGColor, color); }
    /// The item's name in a list, if not empty.
    [[nodiscard]] const string& Info() const { return FInfo; }
    void SetInfo(const string& info) { Set(FInfo, info); }
    [[nodiscard]] QChar BracketStart() const { return FBracketStart; }
    void SetBracketStart(QChar c) { Set(FBracketStart, c); }
    /// NUL: the bracket runs up to the next word break.
    [[nodiscard]] QChar BracketEnd() const { return FBracketEnd; }
    void SetBracketEnd(QChar c) { Set(FBracketEnd, c); }
    [[nodiscard]] const string& Symbols() const { return FSymbols; }
    void SetSymbols(const string& symbols) { Set(FSymbols, symbols); }
    [[nodiscard]] const string& CommentLeft() const { return FCommentLeft; }
    void SetCommentLeft(const string& marker) { Set(FCommentLeft, marker); }
    [[nodiscard]] const string& CommentRight() const { return FCommentRight; }
    void SetCommentRight(const string& marker) { Set(FCommentRight, marker); }

    /// Whether the words hold `word`, which has no more than LongestKeyWord characters to be looked up fast.
    [[nodiscard]] bool HoldsKeyWord(const string& word, Qt::CaseSensitivity sensitivity) const;
    [[nodiscard]] int LongestKeyWord() const { return FLongest; }

    Integer StyleNo = -1;

private:
    void Changed();
    void IndexKeyWords();
    template <class T> void Set(T& field, const T& value) {
        if (field == value)
            return;
        field = value;
        Changed();
    }

    TElementStyles* FList;
    QStringList FKeyWords;
    QSet<string> FExact, FFolded; // the words as they are, and in lower case
    int FLongest = 0;
    TMemoFont FFont;
    TColor FBGColor = clWhite;
    string FInfo;
    TStyleType FStyleType = stKeyword;
    QChar FBracketStart, FBracketEnd;
    string FSymbols;
    string FCommentLeft, FCommentRight;
};

class TElementStyles {
public:
    /// The reference to an element holds until the element is deleted.
    TElementStyle& Add();
    void Delete(int index) { FItems.erase(FItems.begin() + index), Changed(); }
    void Clear();
    [[nodiscard]] int Count() const { return int(FItems.size()); }
    [[nodiscard]] TElementStyle& operator[](int index) { return *FItems[size_t(index)]; }
    [[nodiscard]] const TElementStyle& operator[](int index) const { return *FItems[size_t(index)]; }
    /// A symbol, or the start or end of a bracket.
    [[nodiscard]] bool IsWordBoundary(QChar c) const;

    /// From here on the contents are the styler's own, and Loaded keeps them.
    void Init() { FModified = true; }
    [[nodiscard]] bool Modified() const { return FModified; }
    /// Counts changes, for those who keep what they derived.
    [[nodiscard]] unsigned Revision() const { return FRevision; }
    void Changed();

    TStylesOwner* FOwner = nullptr; ///< who uses the styles at present; may be absent

private:
    std::vector<std::unique_ptr<TElementStyle>> FItems;
    bool FModified = false;
    unsigned FRevision = 0;
};
