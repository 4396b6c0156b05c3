#pragma once
// A rubber stamp: a caption in a box with round corners, on a ground that changes evenly from one colour at
// the top to another at the bottom. The box is as large as the caption needs.
#include "engine/annotations/Annotation.h"
#include "engine/layers/TextSource.h"

class TZQPDFDocument;

class TZQPDFStampAnnotation : public TZQPDFAnnotation {
    Q_OBJECT
    Q_PROPERTY(string Text READ Text WRITE SetText)
    Q_PROPERTY(TColor BaseColor READ BaseColor WRITE SetBaseColor)
public:
    /// (x, y) is the top left corner, `base` the colour of border and caption, `size` the caption's font
    /// size in points. The caption may have several lines.
    TZQPDFStampAnnotation(TZQPDFDocument& document, TZQLayerCollection* collection, Single x, Single y,
                          TColor base, TColor gradientStart, TColor gradientEnd, const string& text,
                          const string& subject, int size);

    /// The caption. Setting it makes the stamp as large as the new one needs.
    [[nodiscard]] string Text() const { return FCaption.Text(); }
    void SetText(const string& text);
    [[nodiscard]] TColor BaseColor() const { return FBase; }
    void SetBaseColor(TColor color);

    void DropLayout() override { FCaption.DropLines(); }

protected:
    [[nodiscard]] const char* Subtype() const override { return "/Stamp"; }
    bool WriteEntries(TAnnotationDrawing& to, QPDFObjectHandle& annotation) override;
    void DrawAppearance(TDrawing& to) override;

private:
    void FitSize();
    void DrawCaption(TDrawing& to) const;

    TZQTextEditSource FCaption;
    TColor FBase;
    TColor FGradientStart;
    TColor FGradientEnd;
};
