#include "engine/images/JpegDecoder.h"

#include "engine/images/Pack.h"

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

namespace {

/// The library's state. It reports errors by a jump, which must not pass over anything with a destructor:
/// whatever may jump stands in Read, which has none.
class TDecoder {
public:
    explicit TDecoder(std::string_view file) {
        FInfo.err = jpeg_std_error(&FErrors);
        FInfo.client_data = this;
        FErrors.error_exit = [](j_common_ptr info) {
            std::longjmp(static_cast<TDecoder*>(info->client_data)->FJump, 1);
        };
        FErrors.output_message = [](j_common_ptr) {};
        FErrors.emit_message = [](j_common_ptr info, int level) {
            if (level < 0)
                ++info->err->num_warnings;
        };
        jpeg_create_decompress(&FInfo);
        jpeg_mem_src(&FInfo, reinterpret_cast<const unsigned char*>(file.data()), file.size());
    }
    ~TDecoder() { jpeg_destroy_decompress(&FInfo); }
    TDecoder(const TDecoder&) = delete;
    TDecoder& operator=(const TDecoder&) = delete;

    /// False if the data is damaged.
    [[nodiscard]] bool Read(const TImageData& image, std::string& rows) {
        if (setjmp(FJump) != 0)
            return false;
        jpeg_read_header(&FInfo, TRUE);
        if (int(FInfo.image_width) != image.Width || int(FInfo.image_height) != image.Height ||
            FInfo.num_components != image.Components)
            return false;
        FInfo.out_color_space = image.Components == 1   ? JCS_GRAYSCALE
                                : image.Components == 3 ? JCS_RGB
                                                        : JCS_CMYK;
        jpeg_start_decompress(&FInfo);
        const size_t stride = size_t(image.Width) * size_t(image.Components);
        while (FInfo.output_scanline < FInfo.output_height) {
            auto* row = reinterpret_cast<JSAMPROW>(rows.data()) + FInfo.output_scanline * stride;
            jpeg_read_scanlines(&FInfo, &row, 1);
        }
        return FErrors.num_warnings == 0;
    }

private:
    jpeg_decompress_struct FInfo{};
    jpeg_error_mgr FErrors{};
    std::jmp_buf FJump{};
};

} // namespace

void DecodeJpeg(TImageData& image, std::string_view file) {
    RequireDecodable(image.Width, image.Height, 8 * image.Components);
    std::string rows(size_t(image.Width) * size_t(image.Height) * size_t(image.Components), '\0');
    if (TDecoder decoder(file); !decoder.Read(image, rows))
        throw EImageError("damaged: its data makes no sense");
    image.PlainRgb = false;
    Pack(image, std::move(rows));
}
