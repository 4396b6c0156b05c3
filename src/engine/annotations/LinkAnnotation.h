#pragma once
// A link: a rectangle, of which nothing is seen, that leads to a page of the document or to an address.
#include "engine/annotations/Annotation.h"

#include <memory>

class TZQPDFDocument;
class TZQPDFPage;

class TZQPDFLinkAnnotation : public TZQPDFAnnotation {
    Q_OBJECT
public:
    /// To a page of the same document, however pages move. Is it deleted before the document is saved, there
    /// is no link.
    TZQPDFLinkAnnotation(TZQPDFPage& target, TZQLayerCollection* collection);

    /// To an address, from a rectangle given by two corners. Of the address, what no URI may hold is
    /// escaped; the rest stays as it is. The collection owns the link.
    static TZQPDFLinkAnnotation* CreateURI(TZQPDFDocument& document, TZQLayerCollection* collection,
                                           Single x1, Single y1, Single x2, Single y2,
                                           const NarrowString& uri);

protected:
    [[nodiscard]] const char* Subtype() const override { return "/Link"; }
    [[nodiscard]] bool IsMarkup() const override { return false; }
    [[nodiscard]] bool HasAppearance() const override { return false; }
    bool WriteEntries(TAnnotationDrawing& to, QPDFObjectHandle& annotation) override;

private:
    TZQPDFLinkAnnotation(TZQLayerCollection* collection, const NarrowString& uri);

    std::weak_ptr<TZQPDFPage> FTarget;
    std::optional<NarrowString> FUri;
};
