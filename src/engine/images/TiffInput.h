#pragma once
// The first page of a TIFF file in memory, through libtiff. For the reader of TIFF files only.
#include "engine/images/ImageData.h"

#include <tiffio.h>

class TTiffInput {
public:
    /// `file` must outlive this. Raises EImageError if it is no TIFF file.
    explicit TTiffInput(std::string_view file);

    /// A tag's value or its default; 0 where there is none, and for numbers past the range.
    [[nodiscard]] int Number(quint32 tag) const;
    [[nodiscard]] Double Real(quint32 tag) const;
    /// EXTRASAMPLE_...; unspecified (0) if there is none.
    [[nodiscard]] int FirstExtraSample() const;
    /// Red, green and blue, 2 to the power of the bits of a sample each; null if there is none.
    [[nodiscard]] std::array<const quint16*, 3> ColorMap() const;
    [[nodiscard]] std::string_view Profile() const;

    /// All rows, samples of 16 bits with the high byte first. Of an image in several planes, `planes` is
    /// their number, and their samples are put together; of all others it is 1. Raises EImageError.
    [[nodiscard]] std::string Samples(int planes);
    /// Four bytes a pixel as the library understands the colours, opacity last. Raises EImageError.
    [[nodiscard]] std::string Rgba();
    /// The undecoded data, if the page is one strip; else nothing.
    [[nodiscard]] std::string OnlyStrip() const;

private:
    void ReadPlane(char* to, size_t stride, int plane);
    void ReadTiles(char* to, size_t stride, int plane);
    static void Require(bool sound);

    static tmsize_t OnRead(thandle_t self, void* to, tmsize_t size);
    static toff_t OnSeek(thandle_t self, toff_t offset, int whence);

    std::string_view FFile;
    toff_t FAt = 0;
    std::unique_ptr<TIFF, void (*)(TIFF*)> FTiff{nullptr, TIFFClose};
};
