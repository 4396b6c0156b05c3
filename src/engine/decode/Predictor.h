#pragma once
// Undoes the predictors of Flate and LZW data (ISO 32000-1, 7.4.4.4).
#include "engine/pdf/Qpdf.h"

#include <qpdf/Pipeline.hh>

/// The entries of /DecodeParms that concern them.
struct TPredictorParams {
    int Predictor = 1; ///< 1 none, 2 TIFF, 10 to 15 PNG
    int Columns = 1;
    int Colors = 1;
    int Bits = 8; ///< of a component

    [[nodiscard]] bool IsSound() const;
    [[nodiscard]] size_t RowBytes() const {
        return (size_t(Columns) * size_t(Colors) * size_t(Bits) + 7) / 8;
    }
    [[nodiscard]] size_t PixelBytes() const { return (size_t(Colors) * size_t(Bits) + 7) / 8; }
};

/// Rows grow with the data that comes, whatever width is claimed.
class TPredictor : public Pipeline {
public:
    TPredictor(const TPredictorParams& params, Pipeline* to);

    void write(unsigned char const* data, size_t size) override;
    void finish() override;

private:
    void EndRow();
    void UndoPng();
    void UndoTiff();

    TPredictorParams FParams;
    size_t FWanted; // bytes of a row, a PNG row's tag included
    std::string FRow;
    std::string FAbove; // the row before, without tag
};
