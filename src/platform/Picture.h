#pragma once
// Pictures as plain pixels, so that what draws them needs no window system, and what shows them none of ours.
#include "base/Text.h"

#include <stdexcept>
#include <vector>

/// Rows from the top, pixels from the left, alpha not multiplied in.
struct TPicture {
    int Width = 0;
    int Height = 0;
    std::vector<ARGB> Pixels;
};

/// Pictures of one size in 32-bit colour.
class TImageList {
public:
    TImageList(int width, int height) : FWidth(width), FHeight(height) {}

    [[nodiscard]] int Width() const { return FWidth; }
    [[nodiscard]] int Height() const { return FHeight; }
    [[nodiscard]] int Count() const { return int(FPictures.size()); }
    [[nodiscard]] const TPicture& operator[](int index) const { return FPictures.at(size_t(index)); }
    /// Raises std::invalid_argument for a picture of another size, which is a fault of the program.
    void Add(TPicture picture) {
        if (picture.Width != FWidth || picture.Height != FHeight)
            throw std::invalid_argument("picture of another size");
        FPictures.push_back(std::move(picture));
    }

private:
    int FWidth;
    int FHeight;
    std::vector<TPicture> FPictures;
};
