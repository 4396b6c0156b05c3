// The filters that can make much of little, in the library's place: each stage's output is counted.
#include "engine/decode/DecodeBudget.h"
#include "engine/decode/Decoders.h"
#include "engine/decode/Predictor.h"

#include <qpdf/QPDFStreamFilter.hh>

#include <limits>

namespace {

class TCounted : public Pipeline {
public:
    explicit TCounted(Pipeline* to) : Pipeline("count", to) {}
    void write(unsigned char const* data, size_t size) override {
        FCount.Add(size);
        getNext()->write(data, size);
    }
    void finish() override { getNext()->finish(); }

private:
    TStageCount FCount;
};

class TFilter : public QPDFStreamFilter {
protected:
    /// Takes `stage`, whose output goes to the stage made before.
    Pipeline* Keep(std::unique_ptr<Pipeline> stage) {
        FStages.push_back(std::move(stage));
        return FStages.back().get();
    }

private:
    std::vector<std::unique_ptr<Pipeline>> FStages;
};

class TRunLength : public TFilter {
public:
    Pipeline* getDecodePipeline(Pipeline* to) override {
        Pipeline* counted = Keep(std::make_unique<TCounted>(to));
        return Keep(std::make_unique<TRunLengthDecode>(counted));
    }
    bool isSpecializedCompression() override { return true; }
};

/// Flate or LZW, with a predictor or without.
class TPredicted : public TFilter {
public:
    enum class TCoding : quint8 { Flate, Lzw };
    explicit TPredicted(TCoding coding) : FCoding(coding) {}

    bool setDecodeParms(QPDFObjectHandle params) override {
        if (params.isNull())
            return true;
        if (!params.isDictionary())
            return false;
        return Take(params, "/Predictor", FParams.Predictor) && Take(params, "/Columns", FParams.Columns) &&
               Take(params, "/Colors", FParams.Colors) && Take(params, "/BitsPerComponent", FParams.Bits) &&
               Take(params, "/EarlyChange", FEarlyChange) && FParams.IsSound();
    }

    Pipeline* getDecodePipeline(Pipeline* to) override {
        if (FParams.Predictor > 1) // which gives no more than it takes
            to = Keep(std::make_unique<TPredictor>(FParams, to));
        to = Keep(std::make_unique<TCounted>(to));
        if (FCoding == TCoding::Flate)
            return Keep(std::make_unique<TInflate>(to));
        return Keep(std::make_unique<TLzwDecode>(to, FEarlyChange != 0));
    }

private:
    static bool Take(QPDFObjectHandle& params, const char* key, int& value) {
        QPDFObjectHandle given = params.getKey(key);
        if (given.isNull())
            return true;
        if (!given.isInteger() || given.getIntValue() < 0 ||
            given.getIntValue() > std::numeric_limits<int>::max())
            return false;
        value = given.getIntValueAsInt();
        return true;
    }

    TCoding FCoding;
    TPredictorParams FParams;
    int FEarlyChange = 1;
};

} // namespace

void InstallCountingFilters() {
    using TCoding = TPredicted::TCoding;
    QPDF::registerStreamFilter("/FlateDecode", [] { return std::make_shared<TPredicted>(TCoding::Flate); });
    QPDF::registerStreamFilter("/LZWDecode", [] { return std::make_shared<TPredicted>(TCoding::Lzw); });
    QPDF::registerStreamFilter("/RunLengthDecode", [] { return std::make_shared<TRunLength>(); });
}
