#include "engine/annotations/FileAttachmentAnnotation.h"

#include "engine/annotations/Icons.h"
#include "engine/layers/Drawing.h"
#include "engine/pdf/AttachedFile.h"

namespace {

constexpr TColor ClipBlue = 0x0096602F;

/// The standard's names begin with a capital letter.
std::string IconName(NarrowString icon) {
    if (!icon.isEmpty())
        icon[0] = char(QChar::toUpper(uint(quint8(icon[0])) & 0x7F));
    return icon.prepend('/').toStdString();
}

} // namespace

TZQPDFFileAttachementAnnotation::TZQPDFFileAttachementAnnotation(TZQPDFDocument& /*document*/,
                                                                 TZQLayerCollection* collection, Single x,
                                                                 Single y, const NarrowString& icon)
    : TZQPDFAnnotation(collection), FIcon(icon) {
    SetColor(ClipBlue);
    SetBounds(TGPRectF::Create(x, y, Single(PaperclipIconWidth), Single(PaperclipIconHeight)));
}

TZQPDFFileAttachementAnnotation::~TZQPDFFileAttachementAnnotation() = default;

void TZQPDFFileAttachementAnnotation::SetDiskFilename(const NarrowString& path) {
    FFile = std::make_unique<TAttachedFile>(ReadAttachedFile(Widen(path), {}, {}, {}));
    SetContents(FFile->Name);
}

bool TZQPDFFileAttachementAnnotation::WriteEntries(TAnnotationDrawing& to, QPDFObjectHandle& annotation) {
    if (!FFile)
        return false;
    QPDFObjectHandle spec = NewFileSpec(to.Document.Pdf, *FFile);
    annotation.replaceKey("/FS", spec);
    if (spec.hasKey("/AFRelationship")) // whose place is told by who refers to it (ISO 19005-3, 6.8)
        annotation.replaceKey("/AF", QPDFObjectHandle::newArray({spec}));
    annotation.replaceKey("/Name", QPDFObjectHandle::newName(IconName(FIcon)));
    return true;
}

void TZQPDFFileAttachementAnnotation::DrawAppearance(TDrawing& to) {
    to.Content.Numbers({to.Width / PaperclipIconWidth, 0, 0, to.Height / PaperclipIconHeight, 0, 0}).Op("cm");
    DrawPaperclipIcon(to.Content, TGPColor::FromColorRef(Color()));
}
