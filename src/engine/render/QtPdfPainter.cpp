// The painter on Qt PDF: the only source that knows it. Built as the library that engine/render/PagePainter.h
// loads.
#include "engine/render/PagePainter.h"

#include "base/Module.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QPdfDocument>

namespace {

constexpr Double InchesPerMetre = 1 / 0.0254;
constexpr int JpegQuality = 90;
constexpr int PngQuality = 80;     // half the time of the default, and no larger with what pages show
constexpr int TiffCompression = 1; // LZW

class TQtPdfPainter : public TPagePainter {
public:
    string Paint(const std::string& pdf, const TPaintJob& job, std::string& picture) noexcept override {
        try {
            return Write(Painted(pdf, job), job, picture);
        } catch (const std::exception& e) { // out of memory
            return QString::fromUtf8(e.what());
        }
    }

private:
    static QImage Painted(const std::string& pdf, const TPaintJob& job) {
        QByteArray bytes = QByteArray::fromRawData(pdf.data(), qsizetype(pdf.size()));
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QPdfDocument document;
        document.load(&buffer);
        if (document.status() != QPdfDocument::Status::Ready || document.pageCount() < 1)
            return {};
        QPdfDocumentRenderOptions options;
        options.setRenderFlags(QPdfDocumentRenderOptions::RenderFlag::Annotations);
        QImage image = document.render(0, QSize(job.Width, job.Height), options);
        image.convertTo(QImage::Format_RGB32); // the page has white paper below it
        return image;
    }

    static string Write(QImage image, const TPaintJob& job, std::string& picture) {
        if (image.isNull())
            return QStringLiteral("it is too damaged.");
        const int dotsPerMetre = qRound(job.Dpi * InchesPerMetre);
        image.setDotsPerMeterX(dotsPerMetre);
        image.setDotsPerMeterY(dotsPerMetre);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QImageWriter writer(&buffer, job.Format);
        if (qstrcmp(job.Format, "jpeg") == 0)
            writer.setQuality(JpegQuality);
        else if (qstrcmp(job.Format, "png") == 0)
            writer.setQuality(PngQuality);
        else if (qstrcmp(job.Format, "tiff") == 0)
            writer.setCompression(TiffCompression);
        if (!writer.write(image))
            return writer.errorString();
        picture.assign(bytes.constData(), size_t(bytes.size()));
        return {};
    }

    // The library under it is set up by the first document and torn down by the last: this one keeps it, and
    // with it the fonts that it has found on the system.
    const QPdfDocument FKeeper;
};

} // namespace

MORVANE_MODULE

extern "C" Q_DECL_EXPORT TPagePainter* NewPagePainter() {
    return new TQtPdfPainter;
}
