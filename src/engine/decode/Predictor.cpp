#include "engine/decode/Predictor.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int Tiff = 2;
constexpr int FirstPng = 10;
constexpr int LastPng = 15;

quint8 Paeth(int left, int above, int aboveLeft) {
    const int estimate = left + above - aboveLeft;
    const int byLeft = std::abs(estimate - left);
    const int byAbove = std::abs(estimate - above);
    const int byAboveLeft = std::abs(estimate - aboveLeft);
    if (byLeft <= byAbove && byLeft <= byAboveLeft)
        return quint8(left);
    return quint8(byAbove <= byAboveLeft ? above : aboveLeft);
}

/// What a PNG filter adds to a byte.
quint8 Predicted(char tag, quint8 left, quint8 above, quint8 aboveLeft) {
    switch (tag) {
    case 1:
        return left;
    case 2:
        return above;
    case 3:
        return quint8((left + above) / 2);
    case 4:
        return Paeth(left, above, aboveLeft);
    default:
        return 0;
    }
}

/// Components of a row, which may be smaller than a byte and are stored with the most significant bits first.
class TComponents {
public:
    TComponents(std::string& row, int bits) : FRow(row), FBits(size_t(bits)) {}

    [[nodiscard]] size_t Count() const { return FRow.size() * 8 / FBits; }
    [[nodiscard]] unsigned Get(size_t index) const {
        if (FBits == 16)
            return unsigned(quint8(FRow[2 * index])) << 8 | quint8(FRow[2 * index + 1]);
        return unsigned(quint8(FRow[index * FBits / 8])) >> Shift(index) & Mask();
    }
    void Set(size_t index, unsigned value) {
        if (FBits == 16) {
            FRow[2 * index] = char(value >> 8);
            FRow[2 * index + 1] = char(value);
            return;
        }
        char& byte = FRow[index * FBits / 8];
        byte = char((unsigned(quint8(byte)) & ~(Mask() << Shift(index))) | (value & Mask()) << Shift(index));
    }

private:
    [[nodiscard]] unsigned Mask() const { return (1U << FBits) - 1; }
    [[nodiscard]] size_t Shift(size_t index) const { return 8 - FBits - index * FBits % 8; }

    std::string& FRow;
    size_t FBits;
};

} // namespace

bool TPredictorParams::IsSound() const {
    constexpr int MaxColors = 32;
    const bool known = Predictor == 1 || Predictor == Tiff || (Predictor >= FirstPng && Predictor <= LastPng);
    const bool bits = Bits == 1 || Bits == 2 || Bits == 4 || Bits == 8 || Bits == 16;
    return known && bits && Columns > 0 && Colors > 0 && Colors <= MaxColors;
}

TPredictor::TPredictor(const TPredictorParams& params, Pipeline* to)
    : Pipeline("predictor", to), FParams(params),
      FWanted(params.RowBytes() + (params.Predictor >= FirstPng ? 1 : 0)) {}

void TPredictor::write(unsigned char const* data, size_t size) {
    while (size > 0) {
        const size_t part = std::min(size, FWanted - FRow.size());
        FRow.append(reinterpret_cast<const char*>(data), part);
        data += part;
        size -= part;
        if (FRow.size() == FWanted)
            EndRow();
    }
}

void TPredictor::finish() {
    if (!FRow.empty())
        EndRow();
    getNext()->finish();
}

void TPredictor::EndRow() {
    if (FParams.Predictor >= FirstPng)
        UndoPng();
    else
        UndoTiff();
    getNext()->write(reinterpret_cast<const unsigned char*>(FRow.data()), FRow.size());
    FAbove.swap(FRow);
    FRow.clear();
}

/// The row's own tag tells its filter; the number in /Predictor does not.
void TPredictor::UndoPng() {
    const char tag = FRow[0];
    FRow.erase(0, 1);
    const size_t step = FParams.PixelBytes();
    FAbove.resize(std::max(FAbove.size(), FRow.size()));
    for (size_t i = 0; i < FRow.size(); ++i) {
        const bool first = i < step;
        FRow[i] = char(quint8(FRow[i]) + Predicted(tag, first ? 0 : quint8(FRow[i - step]), quint8(FAbove[i]),
                                                   first ? 0 : quint8(FAbove[i - step])));
    }
}

void TPredictor::UndoTiff() {
    TComponents components(FRow, FParams.Bits);
    const auto colors = size_t(FParams.Colors);
    for (size_t i = colors; i < components.Count(); ++i)
        components.Set(i, components.Get(i) + components.Get(i - colors));
}
