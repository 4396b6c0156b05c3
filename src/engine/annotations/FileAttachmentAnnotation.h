#pragma once
// A file attached to a place on a page, shown by a paper clip.
#include "engine/annotations/Annotation.h"

#include <memory>

class TZQPDFDocument;
struct TAttachedFile;

class TZQPDFFileAttachementAnnotation : public TZQPDFAnnotation {
    Q_OBJECT
public:
    /// (x, y) is the icon's top left corner. `icon` is the name by which viewers know it (ISO 32000-1, table
    /// 184); what is drawn is a paper clip for all of them.
    TZQPDFFileAttachementAnnotation(TZQPDFDocument& document, TZQLayerCollection* collection, Single x,
                                    Single y, const NarrowString& icon);
    ~TZQPDFFileAttachementAnnotation() override;

    /// Reads the file, whose base name becomes the annotation's text. Raises EFileError, naming the file.
    /// Without a file there is no annotation.
    void SetDiskFilename(const NarrowString& path);

protected:
    [[nodiscard]] const char* Subtype() const override { return "/FileAttachment"; }
    bool WriteEntries(TAnnotationDrawing& to, QPDFObjectHandle& annotation) override;
    void DrawAppearance(TDrawing& to) override;

private:
    NarrowString FIcon;
    std::unique_ptr<const TAttachedFile> FFile;
};
