#include "engine/content/ContentReader.h"

#include "engine/content/ContentScan.h"
#include "engine/content/FormContent.h"

#include <libdeflate.h>
#include <qpdf/Buffer.hh>

namespace {

constexpr size_t MaxContent = 256 << 20; // of a page, decoded

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

/// False where the data isn't whole.
bool Inflate(std::string_view data, std::string& result) {
    thread_local const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
        decompressor(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    for (size_t room = data.size() * 6 + 4096; room <= MaxContent; room *= 3) {
        result.resize(room);
        size_t size = 0;
        const auto outcome = libdeflate_zlib_decompress(decompressor.get(), data.data(), data.size(),
                                                        result.data(), room, &size);
        if (outcome == LIBDEFLATE_INSUFFICIENT_SPACE)
            continue;
        result.resize(outcome == LIBDEFLATE_SUCCESS ? size : 0);
        return outcome == LIBDEFLATE_SUCCESS;
    }
    return false;
}

std::string Decoded(QPDFObjectHandle stream) {
    std::string result;
    if (IsPlainFlate(stream)) {
        const auto raw = stream.getRawStreamData();
        if (Inflate({reinterpret_cast<const char*>(raw->getBuffer()), raw->getSize()}, result))
            return result;
    }
    const auto data = stream.getStreamData(qpdf_dl_generalized); // libqpdf makes do with damaged data
    return {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()};
}

/// White space between the parts of an array (ISO 32000-1, table 30).
std::string DecodedAll(const std::vector<QPDFObjectHandle>& streams) {
    std::string all;
    for (const QPDFObjectHandle& stream : streams) {
        all += Decoded(stream);
        all += '\n';
        if (all.size() > MaxContent)
            return {};
    }
    return all;
}

QPDFObjectHandle Without(const std::vector<size_t>& operators, std::string content, QPDF& pdf) {
    for (const size_t at : operators)
        content[at] = ' ';
    QPDFObjectHandle stream = pdf.newStream();
    stream.replaceStreamData(Deflated(content), QPDFObjectHandle::newName("/FlateDecode"),
                             QPDFObjectHandle::newNull());
    return stream;
}

} // namespace

TReadContent TContentReader::Read(const QPDFObjectHandle& contents) {
    TReadContent result;
    result.Streams = StreamsOf(contents);
    if (result.Streams.empty())
        return result;
    const bool single = result.Streams.size() == 1;
    if (single)
        if (const auto known = FKnown.find(KeyOf(result.Streams[0])); known != FKnown.end()) {
            result.Closing = known->second;
            return result;
        }
    std::string content;
    try {
        content = DecodedAll(result.Streams);
    } catch (const std::exception&) { // a filter that is none, data that is none
    }
    TContentBalance balance = ScanContent(content);
    result.Closing = std::move(balance.Closing);
    if (!balance.ExcessRestores.empty())
        result.Streams = {Without(balance.ExcessRestores, std::move(content), FPdf)};
    else if (single)
        FKnown.emplace(KeyOf(result.Streams[0]), result.Closing);
    return result;
}
