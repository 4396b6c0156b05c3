#pragma once
// Annotations: layers that viewers let people open, edit and take away (ISO 32000-1, 12.5). Each brings the
// picture of itself: viewers show nothing, or something of their own, for one that has none.
#include "engine/layers/Layer.h"

#include <QDateTime>

#include <optional>

class QPDFObjectHandle;

class TZQPDFAnnotation : public TZQCustomLayer {
    Q_OBJECT
    Q_PROPERTY(string Contents READ Contents WRITE SetContents)
    Q_PROPERTY(string Subject READ Subject WRITE SetSubject)
    Q_PROPERTY(string Author READ Author WRITE SetAuthor)
    Q_PROPERTY(TColor Color READ Color WRITE SetColor)
public:
    explicit TZQPDFAnnotation(TZQLayerCollection* collection);

    /// The text that viewers show when the annotation is opened, and read aloud.
    [[nodiscard]] virtual string Contents() const { return FContents; }
    virtual void SetContents(const string& contents);
    /// What it is about, in a few words.
    [[nodiscard]] string Subject() const { return FSubject; }
    void SetSubject(const string& subject);
    /// Who made it; empty at first, since nobody's name goes into a file unasked.
    [[nodiscard]] string Author() const { return FAuthor; }
    void SetAuthor(const string& author);
    /// 0x00BBGGRR. Of an icon, its colour; of a free text, its background.
    [[nodiscard]] TColor Color() const { return FColor.value_or(TColor()); }
    void SetColor(TColor color);

    bool WriteAnnotation(TAnnotationDrawing& to) final;

protected:
    enum class TTurning : quint8 {
        WithPage, ///< part of the page's picture
        Upright,  ///< kept upright by viewers, whichever way they turn the page
    };

    /// With its slash.
    [[nodiscard]] virtual const char* Subtype() const = 0;
    /// Whether it is a remark of somebody's on the document (12.5.6.2), with author, subject and date.
    [[nodiscard]] virtual bool IsMarkup() const { return true; }
    [[nodiscard]] virtual TTurning Turning() const { return TTurning::WithPage; }
    /// Adds the entries of its own. False leaves the annotation out of the file.
    virtual bool WriteEntries(TAnnotationDrawing& to, QPDFObjectHandle& annotation) = 0;
    [[nodiscard]] virtual bool HasAppearance() const { return true; }
    /// Draws on a form of the layer's size.
    virtual void DrawAppearance(TDrawing& /*to*/) {}

    /// The colour if one was set.
    [[nodiscard]] const std::optional<TColor>& ChosenColor() const { return FColor; }

private:
    void WriteCommonEntries(const TAnnotationDrawing& to, QPDFObjectHandle& annotation) const;
    void WriteAppearance(TAnnotationDrawing& to, QPDFObjectHandle& annotation);
    [[nodiscard]] TPageBox Rect() const;

    string FContents;
    string FSubject;
    string FAuthor;
    std::optional<TColor> FColor;
    string FId; ///< stays the same each time the annotation is written
    QDateTime FCreated;
};
