#include "engine/fonts/CffCharset.h"

#include <optional>

namespace {

/// Where the first object of an INDEX lies and where the INDEX ends.
struct TIndex {
    size_t First = 0, FirstEnd = 0, End = 0;
};

std::optional<quint32> NumberAt(const std::string& data, size_t at, size_t size) {
    if (at > data.size() || size > data.size() - at)
        return {};
    quint32 value = 0;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | quint8(data[at + i]);
    return value;
}

std::optional<TIndex> IndexAt(const std::string& data, size_t at) {
    const auto count = NumberAt(data, at, 2);
    const auto offsetSize = NumberAt(data, at + 2, 1);
    if (!count || *count == 0 || !offsetSize || *offsetSize < 1 || *offsetSize > 4)
        return {};
    const size_t offsets = at + 3;
    const size_t base = offsets + (*count + 1) * *offsetSize - 1; // offsets count from 1
    const auto second = NumberAt(data, offsets + *offsetSize, *offsetSize);
    const auto last = NumberAt(data, offsets + *count * *offsetSize, *offsetSize);
    if (!second || !last || *last < *second || base + *last > data.size())
        return {};
    return TIndex{base + 1, base + *second, base + *last};
}

/// Size of an operand by its first byte.
size_t OperandSize(const std::string& data, size_t at) {
    constexpr quint8 Int16 = 28, Int32 = 29, Real = 30;
    const auto first = quint8(data[at]);
    if (first == Int16)
        return 3;
    if (first == Int32)
        return 5;
    if (first != Real)
        return first >= 247 ? 2 : 1;
    size_t size = 2;
    while (at + size <= data.size() && (quint8(data[at + size - 1]) & 0xF) != 0xF)
        ++size;
    return size;
}

/// Where the four bytes of the charset's offset stand in the dictionary of a program by CID.
std::optional<size_t> CharsetOffsetOf(const std::string& data, const TIndex& topDicts) {
    constexpr quint8 Charset = 15, Escape = 12, RosAfterEscape = 30, FirstOperand = 28, Int32 = 29;
    size_t operand = 0;
    bool isByCid = false;
    for (size_t at = topDicts.First; at < topDicts.FirstEnd;) {
        const auto byte = quint8(data[at]);
        if (byte >= FirstOperand) {
            operand = at;
            at += OperandSize(data, at);
            continue;
        }
        if (byte == Escape)
            isByCid |= at + 1 < topDicts.FirstEnd && quint8(data[at + 1]) == RosAfterEscape;
        else if (byte == Charset)
            return isByCid && quint8(data[operand]) == Int32 ? std::optional(operand + 1) : std::nullopt;
        at += byte == Escape ? 2 : 1;
    }
    return {};
}

} // namespace

void NumberCidsByGlyph(std::string& cff, quint32 glyphCount) {
    const auto headerSize = NumberAt(cff, 2, 1);
    const auto names = IndexAt(cff, headerSize.value_or(0));
    const auto topDicts = names ? IndexAt(cff, names->End) : std::nullopt;
    const auto offset = topDicts ? CharsetOffsetOf(cff, *topDicts) : std::nullopt;
    if (!offset || glyphCount < 2)
        return;
    const auto charset = quint32(cff.size());
    for (int i = 0; i < 4; ++i)
        cff[*offset + size_t(i)] = char(charset >> (24 - 8 * i));
    const quint32 following = glyphCount - 2;
    // Format 2: one range of CIDs from 1 on; glyph 0 is always CID 0.
    for (const quint32 byte : {2U, 0U, 1U, following >> 8, following & 0xFF})
        cff += char(byte);
}
