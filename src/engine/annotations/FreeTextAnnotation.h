#pragma once
// A box of text that stands open on the page. Its ground is clear until a colour is set, and it has no
// border: what is under it stays readable as far as the text leaves it free.
#include "engine/annotations/Annotation.h"
#include "engine/annotations/RichText.h"

class TZQPDFDocument;

class TZQPDFFreeTextAnnotation : public TZQPDFAnnotation {
    Q_OBJECT
    Q_PROPERTY(TZQLayerRichText* RichText READ RichText CONSTANT)
public:
    /// A width of 0 is that of the longest line, a height of 0 that of all lines. What doesn't fit the box
    /// isn't seen in it, and stays in the annotation's text.
    TZQPDFFreeTextAnnotation(TZQPDFDocument& document, TZQLayerCollection* collection, Single x, Single y,
                             Single width, Single height);

    /// The text and its looks; owned.
    [[nodiscard]] TZQLayerRichText* RichText() { return &FRichText; }
    /// The same text.
    [[nodiscard]] string Contents() const override { return FRichText.Text(); }
    void SetContents(const string& contents) override { FRichText.SetText(contents); }

    [[nodiscard]] Single Width() const override;
    [[nodiscard]] Single Height() const override;
    void DropLayout() override { FRichText.DropLayout(); }

protected:
    [[nodiscard]] const char* Subtype() const override { return "/FreeText"; }
    bool WriteEntries(TAnnotationDrawing& to, QPDFObjectHandle& annotation) override;
    void DrawAppearance(TDrawing& to) override;

private:
    TZQLayerRichText FRichText;
};
