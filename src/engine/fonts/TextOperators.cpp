#include "engine/fonts/TextOperators.h"

#include "engine/content/FormContent.h"
#include "engine/fonts/GlyphTexts.h"

#include <cmath>

namespace {

// A hundredth of a point at 12 points: below it letters aren't moved.
constexpr Double LeastMove = 0.75;

void AppendNumbers(std::string& data, std::initializer_list<Double> values) {
    for (const Double value : values) {
        AppendNumber(data, value);
        data += ' ';
    }
}

} // namespace

TTextOperators::TTextOperators(Double size, Double x, Double y) : FData("BT\n"), FSize(size), FX(x), FY(y) {}

void TTextOperators::SetFont(const std::string& name, Double lean) {
    Flush();
    FData += name + ' ';
    AppendNumber(FData, FSize);
    FData += " Tf\n";
    FLean = lean;
}

void TTextOperators::Place() {
    if (FIsPlaced && FLean == FPlacedLean)
        return;
    Flush();
    const Double x = FX + FPosition / 1000 * FSize;
    if (FIsPlaced || FLean != 0) {
        AppendNumbers(FData, {1, 0, FLean, 1, x, FY});
        FData += "Tm\n";
    } else {
        AppendNumbers(FData, {x, FY});
        FData += "Td\n";
    }
    FIsPlaced = true;
    FPlacedLean = FLean;
}

void TTextOperators::MoveTo(Double at) {
    const Double distance = std::round(at - FPosition);
    if (std::abs(at - FPosition) < LeastMove)
        return;
    EndString();
    AppendNumber(FArray, -distance);
    FPosition += distance;
}

void TTextOperators::SetRise(Double rise) {
    const Double rounded = std::abs(rise) < LeastMove ? 0 : std::round(rise);
    if (rounded == FRise)
        return;
    Flush();
    AppendNumbers(FData, {rounded / 1000 * FSize});
    FData += "Ts\n";
    FRise = rounded;
}

void TTextOperators::ShowGlyph(quint32 code, Double advance, Double at, Double rise) {
    Place();
    SetRise(rise);
    MoveTo(at);
    AppendHex(FString, code);
    FPosition += advance;
}

void TTextOperators::EndString() {
    if (!FString.empty())
        FArray += '<' + FString + '>';
    FString.clear();
}

void TTextOperators::Flush() {
    if (!FArray.empty()) {
        EndString();
        FData += '[' + FArray + "]TJ\n";
    } else if (!FString.empty()) {
        FData += '<' + FString + ">Tj\n";
    }
    FString.clear();
    FArray.clear();
}

void TTextOperators::OpenSpan(QStringView text) {
    Flush();
    FData += "/Span<</ActualText<FEFF";
    AppendUtf16(FData, text);
    FData += ">>>BDC\n";
}

void TTextOperators::CloseSpan() {
    Flush();
    FData += "EMC\n";
}

std::string TTextOperators::Finish() {
    if (!FIsPlaced)
        return {};
    SetRise(0); // it would last beyond the text object
    Flush();
    return std::move(FData) + "ET\n";
}
