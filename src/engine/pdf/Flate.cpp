#include "engine/pdf/Flate.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>

std::string Deflated(std::string_view data) {
    constexpr int Level = 6;
    // Making a compressor costs more than compressing a page's worth of text.
    thread_local const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)>
        compressor(libdeflate_alloc_compressor(Level), libdeflate_free_compressor);
    std::string result(libdeflate_zlib_compress_bound(compressor.get(), data.size()), '\0');
    result.resize(
        libdeflate_zlib_compress(compressor.get(), data.data(), data.size(), result.data(), result.size()));
    return result;
}

std::optional<std::string> Inflated(std::string_view data, size_t most) {
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    constexpr size_t LargestRatio = 1032; // of the format
    std::string result(std::min(most, data.size() * LargestRatio), '\0');
    size_t size = 0;
    if (libdeflate_zlib_decompress(decompressor.get(), data.data(), data.size(), result.data(), result.size(),
                                   &size) != LIBDEFLATE_SUCCESS)
        return std::nullopt;
    result.resize(size);
    return result;
}
