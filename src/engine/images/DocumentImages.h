#pragma once
// The images that we put into one document.
#include "engine/pdf/Qpdf.h"

#include <QHash>

class TFormContent;
class TImageFile;
struct TImageData;
struct TImageSamples;

/// Makes image XObjects (ISO 32000-1, 8.9.5), one for each image however often it is drawn; colour profiles
/// are shared between images, too.
class TDocumentImages {
public:
    explicit TDocumentImages(QPDF& pdf) : FPdf(pdf) {}

    /// Draws the image into the rectangle, whose lower left corner is (x, y), y up. The rectangle is that of
    /// the image as displayed: its orientation is part of the drawing.
    void Draw(TFormContent& content, const TImageFile& image, Double x, Double y, Double width,
              Double height);
    /// The minor version of PDF 1 that the images drawn so far need.
    [[nodiscard]] int MinorVersion() const { return FMinorVersion; }

private:
    [[nodiscard]] QPDFObjectHandle XObjectOf(const TImageFile& image);
    [[nodiscard]] QPDFObjectHandle NewImage(const std::shared_ptr<const TImageData>& owner,
                                            const TImageSamples& samples);
    [[nodiscard]] QPDFObjectHandle ColorSpaceOf(const TImageData& image);
    [[nodiscard]] QPDFObjectHandle ProfileOf(const TImageData& image);
    void AddMasks(QPDFObjectHandle dict, const std::shared_ptr<const TImageData>& image);

    QPDF& FPdf;
    QHash<QByteArray, QPDFObjectHandle> FImages;   // by the file's digest
    QHash<QByteArray, QPDFObjectHandle> FProfiles; // by the profile's digest
    int FMinorVersion = 0;
};
