#include "engine/render/PageBitmap.h"

#include "base/PartFile.h"
#include "engine/core/DocumentCore.h"
#include "engine/render/PagePainter.h"
#include "engine/render/SinglePage.h"

#include <cmath>

namespace {

constexpr Double PointsPerInch = 72;
constexpr qint64 MaxPixels = 100'000'000; // 400 MB while it is painted
constexpr qint64 MaxSide = 65'000;        // of a JPEG file

const char* FormatOf(const string& fileName) {
    struct {
        const char* Extension;
        const char* Format;
    } const formats[] = {{".png", "png"},  {".jpg", "jpeg"},  {".jpeg", "jpeg"},
                         {".tif", "tiff"}, {".tiff", "tiff"}, {".bmp", "bmp"}};
    for (const auto& known : formats)
        if (fileName.endsWith(QLatin1StringView(known.Extension), Qt::CaseInsensitive))
            return known.Format;
    throw EPDFError(
        QStringLiteral("Cannot write \"%1\": pictures of pages are .png, .jpg, .jpeg, .tif, .tiff or .bmp "
                       "files.")
            .arg(fileName));
}

TPaintJob JobFor(const TPageGeometry& page, int dpi) {
    if (dpi <= 0)
        throw EPDFError(
            QStringLiteral("A resolution of %1 dots per inch is not possible; it must be above 0.").arg(dpi));
    const Double width = std::max(1.0, std::round(page.Width() * dpi / PointsPerInch));
    const Double height = std::max(1.0, std::round(page.Height() * dpi / PointsPerInch));
    if (width > MaxSide || height > MaxSide || width * height > MaxPixels)
        throw EPDFError(
            QStringLiteral("At %1 dots per inch the page would take %2 x %3 pixels, which are too "
                           "many for a picture.")
                .arg(dpi)
                .arg(width, 0, 'f', 0)
                .arg(height, 0, 'f', 0));
    return {.Width = int(width), .Height = int(height), .Dpi = dpi};
}

} // namespace

void SavePageBitmap(TDocumentCore& core, int page, const string& fileName, int dpi) {
    TPaintJob job = JobFor(core.Pages.getItem(page).Geometry(), dpi);
    job.Format = FormatOf(fileName);
    const std::string pdf = SinglePagePdf(core, page);
    std::string picture;
    const string error = PagePainter().Paint(pdf, job, picture);
    if (!error.isEmpty())
        throw EPDFError(QStringLiteral("Cannot make a picture of page %1: %2").arg(page + 1).arg(error));
    TPartFile file(fileName);
    file.Write(picture.data(), picture.size());
    file.PublishReplacing();
}
