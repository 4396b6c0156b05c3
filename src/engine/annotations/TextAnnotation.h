#pragma once
// A note: an icon on the page that opens to a text.
#include "engine/annotations/Annotation.h"

class TZQPDFDocument;

class TZQPDFTextAnnotation : public TZQPDFAnnotation {
    Q_OBJECT
public:
    /// (x, y) is the icon's top left corner. `icon` is the name by which viewers know the kind of note
    /// (ISO 32000-1, table 172); what is drawn is a speech bubble for all of them.
    TZQPDFTextAnnotation(TZQPDFDocument& document, TZQLayerCollection* collection, Single x, Single y,
                         const NarrowString& icon);

protected:
    [[nodiscard]] const char* Subtype() const override { return "/Text"; }
    /// On turned pages, too: notes behave so whether they ask for it or not (12.5.6.4).
    [[nodiscard]] TTurning Turning() const override { return TTurning::Upright; }
    bool WriteEntries(TAnnotationDrawing& to, QPDFObjectHandle& annotation) override;
    void DrawAppearance(TDrawing& to) override;

private:
    NarrowString FIcon;
};
