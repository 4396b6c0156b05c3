#include "engine/images/Pack.h"

#include "engine/pdf/Flate.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

/// PNG's filters (ISO/IEC 15948, 9), which PDF's predictor undoes: each byte is stored as its difference
/// to what its neighbours let expect.
class TRowFilter {
public:
    TRowFilter(size_t rowSize, size_t pixelSize)
        : FRowSize(rowSize), FPixelSize(pixelSize), FAbove(rowSize), FTrial(rowSize), FBest(rowSize) {}

    void Append(std::string& to, const quint8* row) {
        quint64 least = ~quint64(0);
        char best = 0;
        for (char type = 0; type < 5; ++type) {
            const quint64 cost = Filter(type, row);
            if (cost >= least)
                continue;
            least = cost;
            best = type;
            std::swap(FBest, FTrial);
        }
        to += best;
        to.append(reinterpret_cast<const char*>(FBest.data()), FRowSize);
        std::memcpy(FAbove.data(), row, FRowSize);
    }

private:
    static int Paeth(int left, int above, int corner) {
        const int toLeft = std::abs(above - corner);
        const int toAbove = std::abs(left - corner);
        const int toCorner = std::abs(left + above - 2 * corner);
        return toLeft <= toAbove && toLeft <= toCorner ? left : toAbove <= toCorner ? above : corner;
    }

    static int Expected(char type, int left, int above, int corner) {
        switch (type) {
        case 1:
            return left;
        case 2:
            return above;
        case 3:
            return (left + above) / 2;
        case 4:
            return Paeth(left, above, corner);
        default:
            return 0;
        }
    }

    /// Leaves the filtered row in FTrial; gives the sum of its differences, by which the PNG standard
    /// advises to choose.
    quint64 Filter(char type, const quint8* row) {
        quint64 cost = 0;
        for (size_t i = 0; i < FRowSize; ++i) {
            const bool first = i < FPixelSize;
            const int left = first ? 0 : row[i - FPixelSize];
            const int corner = first ? 0 : FAbove[i - FPixelSize];
            FTrial[i] = quint8(row[i] - Expected(type, left, FAbove[i], corner));
            cost += quint64(std::abs(int(qint8(FTrial[i]))));
        }
        return cost;
    }

    size_t FRowSize, FPixelSize;
    std::vector<quint8> FAbove, FTrial, FBest;
};

std::string Filtered(const TImageSamples& samples, std::string_view rows) {
    const size_t rowSize = RowSize(samples);
    const auto pixelSize = size_t(std::max(samples.Bits * samples.Components / 8, 1));
    TRowFilter filter(rowSize, pixelSize);
    std::string result;
    result.reserve(rows.size() + rows.size() / rowSize);
    for (size_t at = 0; at < rows.size(); at += rowSize)
        filter.Append(result, reinterpret_cast<const quint8*>(rows.data()) + at);
    return result;
}

/// Tries both ways on rows from the middle.
bool FilterPays(const TImageSamples& samples, std::string_view rows) {
    constexpr size_t Trial = 128 << 10;
    const size_t rowSize = RowSize(samples);
    const size_t count = std::clamp<size_t>(Trial / rowSize, 1, size_t(samples.Height));
    const std::string_view part =
        rows.substr((size_t(samples.Height) - count) / 2 * rowSize, count * rowSize);
    return Deflated(Filtered(samples, part)).size() < Deflated(part).size();
}

} // namespace

void Pack(TImageSamples& samples, std::string rows) {
    samples.Filter = TImageFilter::Flate;
    samples.PngRows = FilterPays(samples, rows);
    if (samples.PngRows)
        rows = Filtered(samples, rows);
    samples.Data = Deflated(rows);
}

void PackAlpha(TImageData& image, int bits, std::string rows) {
    if (rows.find_first_not_of('\xFF') == std::string::npos)
        return;
    image.Alpha = std::make_unique<TImageSamples>();
    image.Alpha->Width = image.Width;
    image.Alpha->Height = image.Height;
    image.Alpha->Bits = bits;
    if (bits == 8 && std::all_of(rows.begin(), rows.end(), [](char a) { return a == 0 || a == '\xFF'; })) {
        image.Alpha->Bits = 1;
        const size_t rowSize = RowSize(*image.Alpha);
        std::string bitRows(rowSize * size_t(image.Height), '\0');
        for (size_t i = 0; i < rows.size(); ++i) {
            const size_t column = i % size_t(image.Width);
            char& byte = bitRows[i / size_t(image.Width) * rowSize + column / 8];
            if (rows[i] != 0)
                byte = char(byte | 0x80 >> column % 8);
        }
        rows = std::move(bitRows);
    }
    Pack(*image.Alpha, std::move(rows));
}
