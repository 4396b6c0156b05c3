#pragma once
// TAdvCustomMemoStyler: a language, described as data.
#include "base/Component.h"
#include "editor/style/CompletionSettings.h"
#include "editor/style/ElementStyle.h"

class TAdvCustomMemoStyler : public TComponent {
    Q_OBJECT
public:
    explicit TAdvCustomMemoStyler(TComponent* owner = nullptr);
    ~TAdvCustomMemoStyler() override;

    TElementStyles FAllStyles;
    string FLineComment;
    string FMultiCommentLeft, FMultiCommentRight;
    TCharStyle FCommentStyle{12632256, clWhite, fsItalic}; ///< silver
    TCharStyle FNumberStyle{8388608, clWhite, fsBold};     ///< navy
    TCharStyle FHighlightStyle{clWhite, 255, fsBold};      ///< on red
    TCompletionList FlistAuto;                             ///< the completion list
    THintParameter FHintParameter;
    string FNumericChars = "+-.0123456789";
    string FHexIdentifier;
    string FBlockStart, FBlockEnd; ///< markers of a code block
    string FLiteral;               ///< its first character quotes the next one inside a bracket
    bool FCustomDraw = false;      ///< keywords are painted by DrawKeyword
    string FFilter, FDefaultExtension, FExtensions, FDescription, FStylerName;
    /// In front of a bracket character it takes that its meaning. The default is a character that no text
    /// holds: no escape is in force until a styler sets one.
    string FEscapeChar{QChar(0xF8FB)};

    /// Strings and the like end with their line, but for those between FLongBracket.
    bool FBracketsEndWithLine = false;
    QChar FLongBracket;
    /// The element that a regular expression between slashes looks like; -1: the language has none.
    int FExpressions = -1;

    /// Called once the properties have been read from a form: contents that nobody claimed with
    /// TElementStyles::Init go.
    virtual void Loaded();

    [[nodiscard]] bool HasMultiComment() const;
    /// Where the opening marker stands in `text`, from 1; 0 if nowhere. The first kind of marker that occurs
    /// at all decides, on purpose, even if another kind stands before it.
    [[nodiscard]] int FindCommentStart(QStringView text, int& length) const;
    [[nodiscard]] int FindCommentEnd(QStringView text, int& length) const;
    /// The markers in the order in which the two searches try them.
    [[nodiscard]] QStringList CommentStarts() const;
    [[nodiscard]] QStringList CommentEnds() const;

    /// Paints a keyword in place of the control where FCustomDraw is set; `canvas` is the painter's own.
    virtual void DrawKeyword(void* canvas, const string& word, const QRect& rect);
};
