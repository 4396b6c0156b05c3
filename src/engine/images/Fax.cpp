#include "engine/images/Fax.h"

#include <tiffio.h>

#include <cstdio>
#include <cstring>

namespace {

/// A TIFF file in memory, in which the library puts its code.
struct TMemory {
    std::string Bytes;
    size_t At = 0;

    static tmsize_t Read(thandle_t self, void* to, tmsize_t size) {
        auto& memory = *static_cast<TMemory*>(self);
        if (size < 0 || memory.At > memory.Bytes.size())
            return 0;
        const size_t part = std::min(size_t(size), memory.Bytes.size() - memory.At);
        std::memcpy(to, memory.Bytes.data() + memory.At, part);
        memory.At += part;
        return tmsize_t(part);
    }
    static tmsize_t Write(thandle_t self, void* from, tmsize_t size) {
        auto& memory = *static_cast<TMemory*>(self);
        if (memory.Bytes.size() < memory.At + size_t(size))
            memory.Bytes.resize(memory.At + size_t(size));
        std::memcpy(memory.Bytes.data() + memory.At, from, size_t(size));
        memory.At += size_t(size);
        return size;
    }
    static toff_t Seek(thandle_t self, toff_t offset, int whence) {
        auto& memory = *static_cast<TMemory*>(self);
        memory.At = offset + (whence == SEEK_CUR ? memory.At : whence == SEEK_END ? memory.Bytes.size() : 0);
        return memory.At;
    }
};

} // namespace

bool PackAsFax(TImageSamples& samples, std::string rows) {
    TMemory memory;
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(
        TIFFClientOpen(
            "fax", "wm", &memory, TMemory::Read, TMemory::Write, TMemory::Seek, [](thandle_t) { return 0; },
            [](thandle_t self) { return toff_t(static_cast<TMemory*>(self)->Bytes.size()); }, nullptr,
            nullptr),
        TIFFClose);
    if (!tiff)
        return false;
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, quint32(samples.Width));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, quint32(samples.Height));
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, quint32(samples.Height));
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
    if (TIFFWriteEncodedStrip(tiff.get(), 0, rows.data(), tmsize_t(rows.size())) < 0)
        return false;
    const auto start = size_t(TIFFGetStrileOffset(tiff.get(), 0));
    samples.Data = memory.Bytes.substr(start, size_t(TIFFGetStrileByteCount(tiff.get(), 0)));
    samples.Filter = TImageFilter::Fax;
    samples.PngRows = false;
    return true;
}
