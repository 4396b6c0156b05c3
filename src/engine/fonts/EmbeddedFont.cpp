#include "engine/fonts/EmbeddedFont.h"

#include "engine/content/FormContent.h"
#include "engine/fonts/FontProgram.h"

#include <QCryptographicHash>

#include <cmath>
#include <map>

namespace {

using TGlyph = TGlyphTexts::TGlyph;

QPDFObjectHandle Name(const std::string& name) {
    return QPDFObjectHandle::newName('/' + name);
}

/// Two places are finer than the rounding of whole numbers, of which a line would gather much.
QPDFObjectHandle Real(Double value) {
    std::string text;
    AppendNumber(text, std::round(value * 100) / 100);
    return QPDFObjectHandle::parse(text);
}

/// Six letters that differ where the programs do, so that no reader takes one subset for another (ISO
/// 32000-1, 9.6.4).
std::string TagOf(const std::string& program) {
    const QByteArray digest = QCryptographicHash::hash(program, QCryptographicHash::Md5);
    std::string tag;
    for (int i = 0; i < 6; ++i)
        tag += char('A' + quint8(digest[i]) % 26);
    return tag;
}

void SetStream(QPDFObjectHandle& stream, const std::string& data) {
    stream.replaceStreamData(Deflated(data), Name("FlateDecode"), QPDFObjectHandle::newNull());
}

/// The width that most glyphs have. Only whole numbers will do for a default (ISO 32000-1, table 117).
int CommonWidth(const std::vector<TGlyph>& glyphs) {
    std::map<int, int> counts{{1000, 0}};
    for (const TGlyph& glyph : glyphs)
        if (glyph.Advance == std::floor(glyph.Advance))
            ++counts[int(glyph.Advance)];
    return std::max_element(counts.begin(), counts.end(),
                            [](const auto& a, const auto& b) { return a.second < b.second; })
        ->first;
}

} // namespace

TEmbeddedFont::TEmbeddedFont(QPDF& pdf, std::shared_ptr<const TFontFace> face)
    : FFace(std::move(face)), FFont(pdf.makeIndirectObject(QPDFObjectHandle::newDictionary())),
      FDescendant(pdf.makeIndirectObject(QPDFObjectHandle::newDictionary())),
      FDescriptor(pdf.makeIndirectObject(QPDFObjectHandle::newDictionary())), FProgram(pdf.newStream()),
      FToUnicode(pdf.newStream()) {
    FFont.replaceKey("/Type", Name("Font"));
    FFont.replaceKey("/Subtype", Name("Type0"));
    FFont.replaceKey("/Encoding", Name("Identity-H"));
    FFont.replaceKey("/DescendantFonts", QPDFObjectHandle::newArray({FDescendant}));
    FFont.replaceKey("/ToUnicode", FToUnicode);
    FDescendant.replaceKey("/Type", Name("Font"));
    FDescendant.replaceKey("/Subtype", Name(FFace->IsCff() ? "CIDFontType0" : "CIDFontType2"));
    if (!FFace->IsCff())
        FDescendant.replaceKey("/CIDToGIDMap", Name("Identity"));
    FDescendant.replaceKey(
        "/CIDSystemInfo",
        QPDFObjectHandle::parse("<< /Registry (Adobe) /Ordering (Identity) /Supplement 0 >>"));
    FDescendant.replaceKey("/FontDescriptor", FDescriptor);
    FDescriptor.replaceKey(FFace->IsCff() ? "/FontFile3" : "/FontFile2", FProgram);
}

void TEmbeddedFont::Fill() {
    const std::vector<TGlyph> glyphs = FGlyphs.Glyphs();
    std::string map = ToUnicodeMap(glyphs);
    if (glyphs.size() == FFilledGlyphs && map == FFilledMap)
        return;
    std::vector<quint32> numbers;
    numbers.reserve(glyphs.size());
    for (const TGlyph& glyph : glyphs)
        numbers.push_back(glyph.Number);
    const std::string program = SubsetProgram(*FFace, numbers);
    SetStream(FProgram, program);
    QPDFObjectHandle dict = FProgram.getDict();
    if (FFace->IsCff())
        dict.replaceKey("/Subtype", Name("CIDFontType0C"));
    else
        dict.replaceKey("/Length1", QPDFObjectHandle::newInteger(qint64(program.size())));
    SetStream(FToUnicode, map);
    FillDescriptor(TagOf(program));
    FillWidths(glyphs);
    FFilledGlyphs = glyphs.size();
    FFilledMap = std::move(map);
}

void TEmbeddedFont::FillDescriptor(const std::string& tag) {
    constexpr int FixedPitch = 1;
    constexpr int Symbolic = 4;
    constexpr int Italic = 64;
    const TFontFacts facts = FactsOf(*FFace);
    const QPDFObjectHandle name = Name(tag + '+' + facts.PostScriptName);
    // With glyphs outside one alphabet a subset counts as symbolic.
    const int flags =
        Symbolic | (facts.IsFixedPitch ? FixedPitch : 0) | (facts.ItalicAngle != 0 ? Italic : 0);
    FFont.replaceKey("/BaseFont", name);
    FDescendant.replaceKey("/BaseFont", name);
    FDescriptor.replaceKey("/Type", Name("FontDescriptor"));
    FDescriptor.replaceKey("/FontName", name);
    FDescriptor.replaceKey("/Flags", QPDFObjectHandle::newInteger(flags));
    FDescriptor.replaceKey("/FontBBox", QPDFObjectHandle::newArray({Real(facts.Box[0]), Real(facts.Box[1]),
                                                                    Real(facts.Box[2]), Real(facts.Box[3])}));
    FDescriptor.replaceKey("/ItalicAngle", Real(facts.ItalicAngle));
    FDescriptor.replaceKey("/Ascent", Real(std::round(FFace->Ascent() * 1000)));
    FDescriptor.replaceKey("/Descent", Real(-std::round(FFace->Descent() * 1000)));
    FDescriptor.replaceKey("/CapHeight", Real(std::round(facts.CapHeight)));
    FDescriptor.replaceKey("/StemV", Real(facts.StemWidth));
}

void TEmbeddedFont::FillWidths(const std::vector<TGlyph>& glyphs) {
    const int common = CommonWidth(glyphs);
    QPDFObjectHandle widths = QPDFObjectHandle::newArray();
    QPDFObjectHandle group = QPDFObjectHandle::newArray();
    quint32 next = 0;
    for (const TGlyph& glyph : glyphs) {
        if (glyph.Advance == common)
            continue;
        if (glyph.Number != next || group.getArrayNItems() == 0) {
            group = QPDFObjectHandle::newArray();
            widths.appendItem(QPDFObjectHandle::newInteger(glyph.Number));
            widths.appendItem(group);
        }
        group.appendItem(Real(glyph.Advance));
        next = glyph.Number + 1;
    }
    FDescendant.replaceKey("/DW", QPDFObjectHandle::newInteger(common));
    FDescendant.replaceKey("/W", widths);
}
