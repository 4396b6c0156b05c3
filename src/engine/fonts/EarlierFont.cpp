#include "engine/fonts/EarlierFont.h"

#include "engine/fonts/FontProgram.h"
#include "engine/pdf/Flate.h"

#include <qpdf/Buffer.hh>

#include <hb.h>

#include <charconv>
#include <map>

namespace {

using TGlyph = TGlyphTexts::TGlyph;

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// None where an object is missing or of another kind.
std::optional<TFontObjects> ObjectsOf(const QPDFObjectHandle& font, const TFontFace& face) {
    TFontObjects objects;
    objects.Font = font;
    QPDFObjectHandle descendants = Entry(font, "/DescendantFonts");
    if (!objects.Font.isIndirect() || !IsName(Entry(font, "/Encoding"), "/Identity-H") ||
        !descendants.isArray() || descendants.getArrayNItems() != 1)
        return std::nullopt;
    objects.Descendant = descendants.getArrayItem(0);
    objects.Descriptor = Entry(objects.Descendant, "/FontDescriptor");
    objects.Program = Entry(objects.Descriptor, face.IsCff() ? "/FontFile3" : "/FontFile2");
    objects.ToUnicode = Entry(font, "/ToUnicode");
    if (!objects.Descendant.isIndirect() || !objects.Descriptor.isIndirect() || !objects.Program.isStream() ||
        !objects.ToUnicode.isStream())
        return std::nullopt;
    return objects;
}

bool HasNameAndAngleOf(const TFontFace& face, const TFontObjects& objects) {
    const TFontFacts facts = FactsOf(face);
    QPDFObjectHandle name = Entry(objects.Font, "/BaseFont");
    QPDFObjectHandle angle = Entry(objects.Descriptor, "/ItalicAngle");
    return name.isName() && EndsWith(name.getName(), '+' + facts.PostScriptName) && angle.isNumber() &&
           (angle.getNumericValue() != 0) == (facts.ItalicAngle != 0);
}

std::string RawData(QPDFObjectHandle stream) {
    const auto data = stream.getRawStreamData();
    return {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()};
}

/// Numbers of the glyphs that have a width; none where the array isn't as we write it.
std::vector<quint32> GlyphsWithWidth(QPDFObjectHandle widths, quint32 glyphCount) {
    std::vector<quint32> glyphs;
    if (!widths.isArray())
        return {};
    const std::vector<QPDFObjectHandle> items = widths.getArrayAsVector();
    for (size_t i = 0; i + 1 < items.size(); i += 2) {
        QPDFObjectHandle first = items[i];
        QPDFObjectHandle group = items[i + 1];
        if (!first.isInteger() || !group.isArray())
            return {};
        const qint64 number = first.getIntValue();
        const int count = group.getArrayNItems();
        if (number < (glyphs.empty() ? 0 : qint64(glyphs.back()) + 1) || number + count > glyphCount)
            return {};
        for (int k = 0; k < count; ++k)
            glyphs.push_back(quint32(number + k));
    }
    return glyphs;
}

/// The UTF-16 that the digits between brackets from `at` on stand for; moves `at` behind them.
std::optional<string> NextText(std::string_view line, size_t& at) {
    const size_t end = line.find('>', at);
    if (at >= line.size() || line[at] != '<' || end == std::string_view::npos || (end - at - 1) % 4 != 0)
        return std::nullopt;
    string text;
    for (size_t digit = at + 1; digit < end; digit += 4) {
        quint16 unit = 0;
        const char* last = line.data() + digit + 4;
        if (std::from_chars(line.data() + digit, last, unit, 16).ptr != last)
            return std::nullopt;
        text += QChar(unit);
    }
    at = end + 1;
    return text;
}

/// Texts by glyph of the entries of one of our maps.
std::map<quint32, string> TextsOf(std::string_view map) {
    std::map<quint32, string> texts;
    for (size_t start = 0; start < map.size();) {
        const size_t end = std::min(map.find('\n', start), map.size());
        const std::string_view line = map.substr(start, end - start);
        start = end + 1;
        size_t at = 0;
        const auto first = NextText(line, at);
        const auto second = first ? NextText(line, at) : std::nullopt;
        const auto third = second ? NextText(line, at) : std::nullopt;
        if (!second || first->size() != 1 || (third && (second->size() != 1 || third->size() != 1)))
            continue;
        const char16_t from = (*first)[0].unicode();
        const char16_t to = third ? (*second)[0].unicode() : from;
        for (quint32 glyph = from; glyph <= to && glyph - from < 256; ++glyph)
            texts[glyph] = third ? string(QChar(char16_t((*third)[0].unicode() + glyph - from))) : *second;
    }
    return texts;
}

std::vector<TGlyph> GlyphsOf(const TFontFace& face, const std::vector<quint32>& numbers,
                             std::map<quint32, string> texts) {
    constexpr quint32 Missing = 0; // has no text; the map's range of codes reads as if it had
    std::vector<TGlyph> glyphs;
    glyphs.reserve(numbers.size());
    for (const quint32 number : numbers)
        glyphs.push_back({number, face.Advance(number), number == Missing ? string() : texts[number]});
    return glyphs;
}

} // namespace

std::optional<TEarlierFont> ReadEarlierFont(const QPDFObjectHandle& font, const TFontFace& face) {
    constexpr size_t LongestMap = 4 << 20; // of 65,536 glyphs with a few characters each
    try {
        const auto objects = ObjectsOf(font, face);
        if (!objects || !HasNameAndAngleOf(face, *objects))
            return std::nullopt;
        const std::vector<quint32> numbers =
            GlyphsWithWidth(Entry(objects->Descendant, "/W"), hb_face_get_glyph_count(face.Face()));
        const std::string packed = RawData(objects->ToUnicode);
        const auto map = Inflated(packed, LongestMap);
        if (numbers.empty() || !map)
            return std::nullopt;
        std::vector<TGlyph> glyphs = GlyphsOf(face, numbers, TextsOf(*map));
        if (Deflated(ToUnicodeMap(glyphs)) != packed ||
            Deflated(SubsetProgram(face, numbers).Program) != RawData(objects->Program))
            return std::nullopt;
        return TEarlierFont{*objects, std::move(glyphs)};
    } catch (const std::exception&) { // streams that can't be read, a face that can't be cut
        return std::nullopt;
    }
}
