#include "engine/layers/LayerImage.h"

#include "engine/images/ImageFile.h"
#include "engine/layers/Drawing.h"

TZQPDFImage::~TZQPDFImage() = default;

void TZQPDFImage::LoadFromFile(const TFileName& fileName) {
    FImage = TImageFile::Load(fileName);
    FWidth = Single(FImage->Width());
    FHeight = Single(FImage->Height());
    Changed();
}

void TZQPDFImage::Draw(TDrawing& to) {
    if (FImage == nullptr || !(Width() > 0 && Height() > 0))
        return;
    to.Images.Draw(to.Content, *FImage, Double(X()), to.Height - Double(Y()) - Double(Height()),
                   Double(Width()), Double(Height()));
}
