// An image file: what it becomes can be written.
#include "engine/content/FormContent.h"
#include "engine/images/DocumentImages.h"
#include "engine/images/ImageFile.h"
#include "fuzz/Target.h"

#include <qpdf/QPDFWriter.hh>

int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    const TInputFile input(data, size);
    try {
        const auto image = TImageFile::Load(input.Path());
        Require(image->Width() > 0 && image->Height() > 0, "an image without size");
        QPDF pdf;
        pdf.emptyPDF();
        TFormContent content;
        TDocumentImages(pdf).Draw(content, *image, 0, 0, image->Width(), image->Height());
        pdf.getRoot().replaceKey("/Form", content.MakeForm(pdf, {0, 0, 1, 1}, {}));
        QPDFWriter writer(pdf);
        writer.setOutputMemory();
        writer.write();
    } catch (const Exception&) {
    }
    return 0;
}
