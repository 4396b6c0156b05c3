#include "engine/content/ContentReader.h"

#include "engine/content/ContentScan.h"
#include "engine/pdf/Flate.h"

#include <libdeflate.h>
#include <qpdf/Buffer.hh>

#include <algorithm>

namespace {

constexpr qint64 MaxContent = 256 << 20;     // of a page, decoded
constexpr qint64 MaxContents = 512 << 20;    // of all pages, whatever the size of the file
constexpr qint64 ContentsPerStoredByte = 16; // and on top of that; pages compress to a fifth or a tenth

std::vector<QPDFObjectHandle> StreamsOf(QPDFObjectHandle contents) {
    std::vector<QPDFObjectHandle> streams;
    if (contents.isStream())
        streams.push_back(contents);
    else if (contents.isArray())
        for (const QPDFObjectHandle& part : contents.getArrayAsVector())
            if (QPDFObjectHandle(part).isStream())
                streams.push_back(part);
    return streams;
}

bool IsPlainFlate(QPDFObjectHandle stream) {
    QPDFObjectHandle dict = stream.getDict();
    QPDFObjectHandle filter = dict.getKey("/Filter");
    if (filter.isArray() && filter.getArrayNItems() == 1)
        filter = filter.getArrayItem(0);
    return IsName(filter, "/FlateDecode") && dict.getKey("/DecodeParms").isNull();
}

/// Appends to `result`, the quick way. False, and nothing is appended, where the data isn't whole or is
/// unusually much.
bool Inflate(std::string_view data, std::string& result) {
    constexpr size_t Usual = 32 << 20;
    thread_local const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
        decompressor(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    const size_t before = result.size();
    for (size_t room = data.size() * 6 + 4096; room <= Usual; room *= 3) {
        result.resize(before + room);
        size_t size = 0;
        const auto outcome = libdeflate_zlib_decompress(decompressor.get(), data.data(), data.size(),
                                                        result.data() + before, room, &size);
        if (outcome == LIBDEFLATE_INSUFFICIENT_SPACE)
            continue;
        result.resize(before + (outcome == LIBDEFLATE_SUCCESS ? size : 0));
        return outcome == LIBDEFLATE_SUCCESS;
    }
    result.resize(before);
    return false;
}

class TAppend : public Pipeline {
public:
    explicit TAppend(std::string& to) : Pipeline("append", nullptr), FTo(to) {}
    void write(unsigned char const* data, size_t size) override {
        FTo.append(reinterpret_cast<const char*>(data), size);
    }
    void finish() override {}

private:
    std::string& FTo;
};

/// Appends what can be decoded to `result`. False where that isn't all.
bool Decode(QPDFObjectHandle stream, std::string& result, TStageCount& count) {
    const size_t before = result.size();
    if (IsPlainFlate(stream)) {
        const auto raw = stream.getRawStreamData();
        if (Inflate({reinterpret_cast<const char*>(raw->getBuffer()), raw->getSize()}, result)) {
            count.Add(result.size() - before);
            return true;
        }
    }
    TAppend append(result);
    bool filtered = false;
    const bool whole = stream.pipeStreamData(&append, &filtered, 0, qpdf_dl_specialized,
                                             /*suppress_warnings*/ true, /*will_retry*/ false);
    if (!filtered) // coded in a way that no page is, so what came is no content
        result.resize(before);
    count.Add(result.size() - before);
    return whole && filtered;
}

/// White space between the parts of an array (ISO 32000-1, table 30). `whole` tells whether nothing is
/// missing.
std::string DecodedAll(const std::vector<QPDFObjectHandle>& streams, bool& whole) {
    std::string all;
    TStageCount count;
    whole = true;
    try {
        for (const QPDFObjectHandle& stream : streams) {
            whole = Decode(stream, all, count) && whole;
            all += '\n';
        }
    } catch (const std::exception&) { // a length that is none, and whatever else damage can be
        whole = false;
    }
    return all;
}

QPDFObjectHandle NewContent(const std::string& content, QPDF& pdf) {
    QPDFObjectHandle stream = pdf.newStream();
    stream.replaceStreamData(Deflated(content), QPDFObjectHandle::newName("/FlateDecode"),
                             QPDFObjectHandle::newNull());
    return stream;
}

QPDFObjectHandle Without(const std::vector<size_t>& operators, std::string content, QPDF& pdf) {
    for (const size_t at : operators)
        content[at] = ' ';
    return NewContent(content, pdf);
}

} // namespace

TContentReader::TContentReader(QPDF& pdf, qint64 stored)
    : FPdf(pdf), FBudget(MaxContent, MaxContents + ContentsPerStoredByte * stored) {}

TReadContent TContentReader::Read(const QPDFObjectHandle& contents) {
    std::vector<QPDFObjectHandle> streams = StreamsOf(contents);
    if (streams.size() != 1)
        return ReadStreams(std::move(streams));
    const quint64 key = KeyOf(streams[0]);
    const auto known = FKnown.find(key);
    return known != FKnown.end() ? known->second : FKnown[key] = ReadStreams(std::move(streams));
}

TReadContent TContentReader::ReadStreams(std::vector<QPDFObjectHandle> streams) {
    TReadContent result{std::move(streams), {}};
    if (result.Streams.empty())
        return result;
    bool whole = true;
    std::string content;
    {
        const TDecodeScope scope(FBudget);
        content = DecodedAll(result.Streams, whole);
    }
    FBudget.RequireKept(QStringLiteral("The contents of the document's pages"));
    TContentBalance balance = ScanContent(content);
    result.Damaged = !whole || balance.CutOff;
    if (result.Damaged) {
        if (result.Streams.size() > 1)
            result.Streams = {NewContent(content, FPdf)};
        return result;
    }
    result.Closing = std::move(balance.Closing);
    if (!balance.ExcessRestores.empty())
        result.Streams = {Without(balance.ExcessRestores, std::move(content), FPdf)};
    return result;
}
