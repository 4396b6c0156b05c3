#include "engine/images/PngDecoder.h"

#include <png.h>

#include <csetjmp>
#include <cstring>

namespace {

/// The library's state. It reports errors by a jump, which must not pass over anything with a destructor:
/// whatever may jump stands in Read, which has none.
class TDecoder {
public:
    explicit TDecoder(std::string_view file)
        : FRest(file), FPng(png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning)),
          FInfo(png_create_info_struct(FPng)) {
        png_set_read_fn(FPng, this, OnRead);
        png_set_user_limits(FPng, MaxSide, MaxSide);
    }
    ~TDecoder() { png_destroy_read_struct(&FPng, &FInfo, nullptr); }
    TDecoder(const TDecoder&) = delete;
    TDecoder& operator=(const TDecoder&) = delete;

    /// False if the data is damaged.
    [[nodiscard]] bool Read(png_bytep* rows, png_uint_32 height, size_t rowSize) {
        if (setjmp(FJump) != 0)
            return false;
        png_read_info(FPng, FInfo);
        png_set_interlace_handling(FPng);
        png_read_update_info(FPng, FInfo);
        if (png_get_image_height(FPng, FInfo) != height || png_get_rowbytes(FPng, FInfo) != rowSize)
            return false;
        png_read_image(FPng, rows);
        return true;
    }

private:
    [[noreturn]] static void OnError(png_structp png, png_const_charp /*message*/) {
        std::longjmp(static_cast<TDecoder*>(png_get_error_ptr(png))->FJump, 1);
    }
    static void OnWarning(png_structp /*png*/, png_const_charp /*message*/) {}
    static void OnRead(png_structp png, png_bytep to, size_t size) {
        auto* self = static_cast<TDecoder*>(png_get_io_ptr(png));
        if (size > self->FRest.size())
            png_error(png, "end");
        std::memcpy(to, self->FRest.data(), size);
        self->FRest.remove_prefix(size);
    }

    std::string_view FRest;
    std::jmp_buf FJump{};
    png_structp FPng;
    png_infop FInfo;
};

} // namespace

std::string DecodePng(std::string_view file, int height, size_t rowSize) {
    std::string samples(rowSize * size_t(height), '\0');
    std::vector<png_bytep> rows;
    for (size_t at = 0; at < samples.size(); at += rowSize)
        rows.push_back(reinterpret_cast<png_bytep>(samples.data()) + at);
    if (TDecoder decoder(file); !decoder.Read(rows.data(), png_uint_32(height), rowSize))
        throw EImageError("damaged: its data makes no sense");
    return samples;
}
