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

/// The character of an Arabic ligature of lam and alef; no character for other texts. Some readers turn the
/// letters of each glyph from right to left around, so that this one would come out as the article. All of
/// them know its own character.
QChar LamAlef(QStringView text) {
    constexpr char16_t Lam = 0x0644;
    if (text.size() != 2 || text[0] != Lam)
        return {};
    switch (text[1].unicode()) {
    case 0x0622:
        return QChar(0xFEF5);
    case 0x0623:
        return QChar(0xFEF7);
    case 0x0625:
        return QChar(0xFEF9);
    case 0x0627:
        return QChar(0xFEFB);
    default:
        return {};
    }
}

/// What the one glyph of a cluster stands for by itself: not for what is joined to it without being shown.
string OwnText(QStringView text, bool rightToLeft) {
    string own = text.toString();
    if (text.size() > 1)
        own.removeIf([](QChar c) { return NeedsNoGlyph(c.unicode()); });
    if (own.isEmpty())
        return text.toString();
    if (!rightToLeft)
        return own;
    if (own.size() == 1) // a bracket is shown by the glyph of its counterpart
        return QChar(char16_t(QChar::mirroredChar(own[0].unicode())));
    const QChar ligature = LamAlef(own);
    return ligature.isNull() ? own : string(ligature);
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

void TGlyphTexts::Tell(TGlyph& glyph, const string& text) {
    constexpr quint32 Missing = 0; // stands for whatever a font lacks
    if (glyph.Text.isEmpty() && glyph.Number != Missing)
        glyph.Text = text;
}

bool TGlyphTexts::Note(const TFontFace& face, const TShapedCluster& cluster, QStringView text,
                       bool rightToLeft) {
    if (cluster.Glyphs.size() > 1)
        return NoteSeveral(face, cluster, text, rightToLeft);
    TGlyph& glyph = Use(face, cluster.Glyphs[0].Glyph);
    if (glyph.Text == text)
        return true;
    const string own = OwnText(text, rightToLeft);
    Tell(glyph, own);
    return glyph.Text == own && (own == text || own == LamAlef(text));
}

bool TGlyphTexts::NoteSeveral(const TFontFace& face, const TShapedCluster& cluster, QStringView text,
                              bool rightToLeft) {
    constexpr size_t MostGlyphs = 64; // of letters and marks that mean something together
    for (const TShapedGlyph& shaped : cluster.Glyphs)
        (void)Use(face, shaped.Glyph);
    if (cluster.Glyphs.size() > MostGlyphs)
        return false;
    // Characters that have their own glyph in the cluster are told by it, the first of the others by the
    // rest.
    string rest = text.toString();
    for (const TShapedGlyph& shaped : cluster.Glyphs)
        for (qsizetype i = 0; i < rest.size(); ++i)
            if (face.GlyphOf(rest[i].unicode()) == shaped.Glyph) {
                Tell(Use(face, shaped.Glyph), rest[i]);
                rest.remove(i, 1);
                break;
            }
    string told;
    const size_t count = cluster.Glyphs.size();
    for (size_t i = 0; i < count; ++i) {
        TGlyph& glyph = Use(face, cluster.Glyphs[rightToLeft ? count - 1 - i : i].Glyph);
        if (glyph.Text.isEmpty())
            Tell(glyph, std::exchange(rest, string()));
        told += glyph.Text;
    }
    // Marks of one letter may come in another order.
    const auto canonical = [](const string& some) { return some.normalized(QString::NormalizationForm_D); };
    return told == text || canonical(told) == canonical(text.toString());
}

void TGlyphTexts::GoOnWith(const std::vector<TGlyph>& glyphs) {
    FGlyphs = glyphs;
    for (size_t i = 0; i < glyphs.size(); ++i) {
        if (glyphs[i].Number >= FIndexes.size())
            FIndexes.resize(glyphs[i].Number + 1);
        FIndexes[glyphs[i].Number] = quint32(i + 1);
    }
}

std::vector<TGlyph> TGlyphTexts::Glyphs() const {
    std::vector<TGlyph> sorted = FGlyphs;
    std::sort(sorted.begin(), sorted.end(),
              [](const TGlyph& a, const TGlyph& b) { return a.Number < b.Number; });
    return sorted;
}

bool IsReadable(QStringView text) {
    return std::none_of(text.begin(), text.end(), [](QChar c) { return IsControl(c) || IsDirectionMark(c); });
}

string ReadableText(QStringView text) {
    string readable;
    readable.reserve(text.size());
    for (const QChar c : text)
        if (c == u'\t')
            readable += string(BlanksOfTab, u' ');
        else if (!IsControl(c) && !IsDirectionMark(c))
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
    std::vector<std::string> characters;
    std::vector<std::string> ranges;
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
