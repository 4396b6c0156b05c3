#include "engine/decode/Decoders.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

struct TInflate::TState {
    z_stream Stream{};
    bool Ended = false;
};

namespace {
bool IsChecksum(const z_stream& stream, int outcome) {
    return outcome == Z_DATA_ERROR && stream.msg && std::strcmp(stream.msg, "incorrect data check") == 0;
}
} // namespace

TInflate::TInflate(Pipeline* to) : Pipeline("inflate", to), FState(std::make_unique<TState>()) {
    if (inflateInit(&FState->Stream) != Z_OK)
        throw std::bad_alloc();
}

TInflate::~TInflate() {
    inflateEnd(&FState->Stream);
}

void TInflate::write(unsigned char const* data, size_t size) {
    constexpr uInt Room = 1 << 16;
    constexpr size_t Part = 1 << 30; // zlib counts in 32 bits
    std::vector<unsigned char> room(Room);
    z_stream& stream = FState->Stream;
    for (size_t at = 0; at < size && !FState->Ended; at += Part) {
        stream.next_in = const_cast<unsigned char*>(data + at);
        stream.avail_in = uInt(std::min(Part, size - at));
        do {
            stream.next_out = room.data();
            stream.avail_out = Room;
            const int outcome = inflate(&stream, Z_SYNC_FLUSH);
            const size_t got = Room - stream.avail_out;
            if (got > 0)
                getNext()->write(room.data(), got);
            FState->Ended = outcome == Z_STREAM_END;
            if (!FState->Ended && outcome != Z_OK && outcome != Z_BUF_ERROR)
                throw std::runtime_error(stream.msg != nullptr ? stream.msg : "flate data is damaged");
        } while (!FState->Ended && (stream.avail_in > 0 || stream.avail_out == 0));
    }
}

/// Whether all blocks are there: then the bytes that come next, whatever they are, are taken for the
/// checksum.
bool TInflate::LacksOnlyItsEnd() {
    unsigned char checksum[] = {0, 0, 0, 0};
    unsigned char room[sizeof checksum * 64];
    z_stream& stream = FState->Stream;
    stream.next_in = checksum;
    stream.avail_in = sizeof checksum;
    stream.next_out = room;
    stream.avail_out = sizeof room;
    const int outcome = inflate(&stream, Z_SYNC_FLUSH);
    return stream.avail_out == sizeof room && (outcome == Z_STREAM_END || IsChecksum(stream, outcome));
}

void TInflate::finish() {
    getNext()->finish();
    if (!FState->Ended && !LacksOnlyItsEnd())
        throw std::runtime_error("flate data leaves off");
}

void TRunLengthDecode::write(unsigned char const* data, size_t size) {
    for (size_t i = 0; i < size && !FEnded; ++i) {
        if (FCount == 0) {
            FEnded = data[i] == EndOfData;
            FRunIsNext = data[i] > EndOfData;
            FCount = FRunIsNext ? 257U - data[i] : data[i] + 1U;
        } else if (FRunIsNext) {
            unsigned char run[EndOfData];
            std::memset(run, data[i], FCount);
            getNext()->write(run, FCount);
            FCount = 0;
        } else {
            const size_t part = std::min<size_t>(FCount, size - i);
            getNext()->write(data + i, part);
            FCount -= unsigned(part);
            i += part - 1;
        }
    }
}

namespace {
constexpr unsigned ClearCode = 256;
constexpr unsigned EndCode = 257;
constexpr unsigned FirstFree = 258;
constexpr unsigned TableSize = 4096;
constexpr unsigned LongestCode = 12;
} // namespace

TLzwDecode::TLzwDecode(Pipeline* to, bool earlyChange)
    : Pipeline("lzw", to), FEarly(earlyChange), FTable(TableSize) {
    for (unsigned i = 0; i < ClearCode; ++i)
        FTable[i] = {0, static_cast<unsigned char>(i), static_cast<unsigned char>(i)};
    Clear();
}

void TLzwDecode::Clear() {
    FUsed = FirstFree;
    FWidth = 9;
    FHasPrevious = false;
}

void TLzwDecode::write(unsigned char const* data, size_t size) {
    for (size_t i = 0; i < size && !FEnded; ++i) {
        FBits = FBits << 8 | data[i];
        FBitCount += 8;
        if (FBitCount < FWidth)
            continue;
        FBitCount -= FWidth;
        Code(FBits >> FBitCount & ((1U << FWidth) - 1));
    }
}

void TLzwDecode::finish() {
    Flush();
    getNext()->finish();
}

void TLzwDecode::Flush() {
    getNext()->write(FOutput.data(), FOutput.size());
    FOutput.clear();
}

void TLzwDecode::Code(unsigned code) {
    if (code == EndCode) {
        FEnded = true;
        return;
    }
    if (code == ClearCode)
        return Clear();
    // One that isn't there yet is the string before with its own first byte behind it.
    if (code > FUsed || (code == FUsed && !FHasPrevious) || (code >= EndCode && code < FirstFree))
        throw std::runtime_error("LZW data is damaged");
    if (FHasPrevious && FUsed < TableSize) {
        const unsigned firstOf = code < FUsed ? code : FPrevious;
        FTable[FUsed++] = {static_cast<unsigned short>(FPrevious), FTable[firstOf].First,
                           FTable[FPrevious].First};
    } else if (code >= FUsed) {
        throw std::runtime_error("LZW data is damaged");
    }
    Emit(code);
    FPrevious = code;
    FHasPrevious = true;
    const unsigned coming = FUsed + (FEarly ? 1 : 0);
    while (FWidth < LongestCode && coming >= 1U << FWidth)
        ++FWidth;
}

void TLzwDecode::Emit(unsigned code) {
    const auto begin = std::ptrdiff_t(FOutput.size());
    for (; code >= FirstFree; code = FTable[code].Prefix)
        FOutput.push_back(FTable[code].Last);
    FOutput.push_back(FTable[code].Last);
    std::reverse(FOutput.begin() + begin, FOutput.end());
    constexpr size_t Enough = 1 << 16;
    if (FOutput.size() >= Enough)
        Flush();
}
