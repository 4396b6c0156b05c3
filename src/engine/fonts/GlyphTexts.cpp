#include "engine/fonts/GlyphTexts.h"

#include "engine/fonts/TextItems.h"

namespace {

using TGlyph = TGlyphTexts::TGlyph;

/// Glyphs of consecutive numbers for consecutive characters, in the form of one entry of the map. A range
/// must not cross a border of 256 numbers.
size_t EndOfRange(const std::vector<TGlyph>& glyphs, size_t first) {
    size_t end = first + 1;
    for (; end < glyphs.size(); ++end) {
        const TGlyph& previous = glyphs[end - 1];
        const TGlyph& glyph = glyphs[end];
        const bool isNext = glyph.Number == previous.Number + 1 && glyph.Number % 256 != 0;
        const bool areSingle = glyph.Text.size() == 1 && previous.Text.size() == 1;
        if (!isNext || !areSingle || glyph.Text[0].unicode() != previous.Text[0].unicode() + 1 ||
            glyph.Text[0].cell() == 0)
            break;
    }
    return end;
}

/// One section holds at most 100 entries.
void AppendSection(std::string& map, const char* kind, const std::vector<std::string>& entries) {
    constexpr size_t MostEntries = 100;
    for (size_t first = 0; first < entries.size(); first += MostEntries) {
        const size_t count = std::min(MostEntries, entries.size() - first);
        map += std::to_string(count) + " begin" + kind + '\n';
        for (size_t i = first; i < first + count; ++i)
            map += entries[i];
        map += std::string("end") + kind + '\n';
    }
}

constexpr struct {
    QStringView Letters;
    char16_t Ligature;
} LamAlefs[] = {{u"\u0644\u0622", 0xFEF5},
                {u"\u0644\u0623", 0xFEF7},
                {u"\u0644\u0625", 0xFEF9},
                {u"\u0644\u0627", 0xFEFB}};

bool IsLamAlef(const string& text) {
    return std::any_of(std::begin(LamAlefs), std::end(LamAlefs),
                       [&](const auto& one) { return text.size() == 1 && text[0] == one.Ligature; });
}

/// What the one glyph of a cluster stands for by itself.
string OwnText(QStringView text, bool rightToLeft) {
    if (text.size() > 1) {
        string shown;
        for (const QChar c : text)
            if (!NeedsNoGlyph(c.unicode()))
                shown += c;
        if (!shown.isEmpty() && shown.size() < text.size())
            return OwnText(shown, rightToLeft);
    }
    if (!rightToLeft)
        return text.toString();
    // A bracket is shown by the glyph of its counterpart.
    if (text.size() == 1)
        return QChar(char16_t(QChar::mirroredChar(text[0].unicode())));
    // Some readers turn the letters of any glyph from right to left around, so that lam with alef would come
    // out as the Arabic article. All of them know the ligature's own character.
    for (const auto& one : LamAlefs)
        if (text == one.Letters)
            return QChar(one.Ligature);
    return text.toString();
}

bool IsDirectionMark(char16_t c) {
    return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069);
}

} // namespace

TGlyph& TGlyphTexts::Use(const TFontFace& face, quint32 glyph) {
    if (glyph >= FIndexes.size())
        FIndexes.resize(glyph + 1);
    quint32& index = FIndexes[glyph];
    if (index == 0) {
        FGlyphs.push_back({glyph, face.Advance(glyph), {}});
        index = quint32(FGlyphs.size());
    }
    return FGlyphs[index - 1];
}

bool TGlyphTexts::Note(const TFontFace& face, const TShapedCluster& cluster, QStringView text,
                       bool rightToLeft) {
    constexpr quint32 MissingGlyph = 0;
    const size_t count = cluster.Glyphs.size();
    if (count == 1) {
        TGlyph& glyph = Use(face, cluster.Glyphs[0].Glyph);
        if (glyph.Text == text)
            return true;
        const string own = OwnText(text, rightToLeft);
        if (glyph.Text.isEmpty() && glyph.Number != MissingGlyph)
            glyph.Text = own;
        return glyph.Text == own && (own == text || (IsLamAlef(own) && text.size() == 2));
    }
    // Characters that have their own glyph in the cluster are told by it, the first of the others by the
    // rest.
    string rest = text.toString();
    for (const TShapedGlyph& shaped : cluster.Glyphs) {
        TGlyph& glyph = Use(face, shaped.Glyph);
        for (qsizetype i = 0; i < rest.size(); ++i)
            if (face.GlyphOf(rest[i].unicode()) == glyph.Number && glyph.Number != MissingGlyph) {
                if (glyph.Text.isEmpty())
                    glyph.Text = rest[i];
                rest.remove(i, 1);
                break;
            }
    }
    string told;
    for (size_t i = 0; i < count; ++i) {
        TGlyph& glyph = Use(face, cluster.Glyphs[rightToLeft ? count - 1 - i : i].Glyph);
        if (glyph.Text.isEmpty() && glyph.Number != MissingGlyph)
            glyph.Text = std::exchange(rest, string());
        told += glyph.Text;
    }
    // Marks of one letter may come in another order.
    return told == text || told.normalized(QString::NormalizationForm_D) ==
                               text.toString().normalized(QString::NormalizationForm_D);
}

std::vector<TGlyph> TGlyphTexts::Glyphs() const {
    std::vector<TGlyph> sorted = FGlyphs;
    std::sort(sorted.begin(), sorted.end(),
              [](const TGlyph& a, const TGlyph& b) { return a.Number < b.Number; });
    return sorted;
}

bool IsReadable(QStringView text) {
    return std::none_of(text.begin(), text.end(),
                        [](QChar c) { return IsControl(c) || IsDirectionMark(c.unicode()); });
}

string ReadableText(QStringView text) {
    string readable;
    readable.reserve(text.size());
    for (const QChar c : text)
        if (c == u'\t')
            readable += string(BlanksOfTab, u' ');
        else if (!IsControl(c) && !IsDirectionMark(c.unicode()))
            readable += c;
    return readable;
}

void AppendHex(std::string& data, quint32 value) {
    constexpr char Digits[] = "0123456789ABCDEF";
    for (int shift = 12; shift >= 0; shift -= 4)
        data += Digits[value >> shift & 0xF];
}

void AppendUtf16(std::string& data, QStringView text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const bool isLone = text[i].isSurrogate() && !isPair;
        AppendHex(data, isLone ? char16_t(QChar::ReplacementCharacter) : text[i].unicode());
        if (isPair)
            AppendHex(data, text[++i].unicode());
    }
}

std::string ToUnicodeMap(const std::vector<TGlyph>& glyphs) {
    std::vector<std::string> characters, ranges;
    for (size_t first = 0, end = 0; first < glyphs.size(); first = end) {
        end = EndOfRange(glyphs, first);
        if (glyphs[first].Text.isEmpty())
            continue;
        std::string entry = "<";
        AppendHex(entry, glyphs[first].Number);
        if (end - first > 1) {
            entry += "><";
            AppendHex(entry, glyphs[end - 1].Number);
        }
        entry += "><";
        AppendUtf16(entry, glyphs[first].Text);
        entry += ">\n";
        (end - first > 1 ? ranges : characters).push_back(std::move(entry));
    }
    std::string map = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                      "/CIDSystemInfo <</Registry (Adobe) /Ordering (UCS) /Supplement 0>> def\n"
                      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
                      "1 begincodespacerange\n<0000><FFFF>\nendcodespacerange\n";
    AppendSection(map, "bfchar", characters);
    AppendSection(map, "bfrange", ranges);
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}
