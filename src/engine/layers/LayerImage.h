#pragma once
// An image on a page.
#include "engine/layers/Layer.h"

#include <memory>

class TImageFile;

class TZQPDFImage : public TZQCustomLayer {
    Q_OBJECT
public:
    explicit TZQPDFImage(TZQLayerCollection* collection) : TZQCustomLayer(collection) {}
    ~TZQPDFImage() override;

    /// Reads the image and takes its natural size, worked out from its resolution. Raises EFileError or
    /// EPDFError, naming the file; the layer then shows what it showed.
    Q_INVOKABLE void LoadFromFile(const TFileName& fileName);

    void Draw(TDrawing& to) override;

private:
    std::shared_ptr<const TImageFile> FImage;
};
