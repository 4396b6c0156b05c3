#include "engine/fonts/CffCharset.h"

#include <optional>

namespace {

constexpr quint8 Int32 = 29; // an operand of four bytes

/// Where the first object of an INDEX lies and where the INDEX ends.
struct TIndex {
    size_t First = 0, FirstEnd = 0, End = 0;
};

std::optional<quint32> NumberAt(std::string_view data, size_t at, size_t size) {
    if (at > data.size() || size > data.size() - at)
        return {};
    quint32 value = 0;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | quint8(data[at + i]);
    return value;
}

std::optional<TIndex> IndexAt(std::string_view data, size_t at) {
    const auto count = NumberAt(data, at, 2);
    const auto offsetSize = NumberAt(data, at + 2, 1);
    if (!count || *count == 0 || !offsetSize || *offsetSize < 1 || *offsetSize > 4)
        return {};
    const size_t offsets = at + 3;
    const size_t base = offsets + (size_t(*count) + 1) * *offsetSize - 1; // offsets count from 1
    const auto second = NumberAt(data, offsets + *offsetSize, *offsetSize);
    const auto last = NumberAt(data, offsets + size_t(*count) * *offsetSize, *offsetSize);
    if (!second || !last || *last < *second || base + *last > data.size())
        return {};
    return TIndex{base + 1, base + *second, base + *last};
}

/// Size of an operand by its first byte.
size_t OperandSize(std::string_view data, size_t at) {
    constexpr quint8 Int16 = 28;
    constexpr quint8 Real = 30;
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

/// What we ask of the first of a program's top dictionaries.
struct TTopDict {
    bool HasCids = false;
    size_t CharsetOffset = 0; ///< where the operand of four bytes stands; 0 if there is none
};

TTopDict TopDictOf(std::string_view data) {
    constexpr quint8 Charset = 15;
    constexpr quint8 Escape = 12;
    constexpr quint8 RosAfterEscape = 30;
    constexpr quint8 FirstOperand = 28;
    TTopDict dict;
    const auto names = IndexAt(data, NumberAt(data, 2, 1).value_or(0));
    const auto dicts = names ? IndexAt(data, names->End) : std::nullopt;
    if (!dicts)
        return dict;
    size_t operand = 0;
    for (size_t at = dicts->First; at < dicts->FirstEnd;) {
        const auto byte = quint8(data[at]);
        if (byte >= FirstOperand) {
            operand = at;
            at += OperandSize(data, at);
            continue;
        }
        if (byte == Escape && at + 1 < dicts->FirstEnd && quint8(data[at + 1]) == RosAfterEscape)
            dict.HasCids = true;
        if (byte == Charset && quint8(data[operand]) == Int32 && operand + 5 <= data.size())
            dict.CharsetOffset = operand + 1;
        at += byte == Escape ? 2 : 1;
    }
    return dict;
}

} // namespace

bool HasCids(std::string_view cff) {
    return TopDictOf(cff).HasCids;
}

bool SetCids(std::string& cff, const std::vector<quint32>& cids) {
    const size_t offset = TopDictOf(cff).CharsetOffset;
    if (offset == 0)
        return false;
    const auto charset = quint32(cff.size());
    for (size_t i = 0; i < 4; ++i)
        cff[offset + i] = char(charset >> (24 - 8 * i));
    cff += '\0'; // format 0: one CID after the other
    for (size_t i = 1; i < cids.size(); ++i) {
        cff += char(cids[i] >> 8);
        cff += char(cids[i]);
    }
    return true;
}
