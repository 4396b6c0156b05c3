#include "engine/fonts/EmbeddedFont.h"

#include "engine/content/FormContent.h"
#include "engine/fonts/FontProgram.h"
#include "engine/pdf/Flate.h"
#include "engine/pdf/Metadata.h"

#include <QCryptographicHash>

#include <cmath>

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

} // namespace

TEmbeddedFont::TEmbeddedFont(QPDF& pdf, std::shared_ptr<const TFontFace> face)
    : FPdf(pdf), FFace(std::move(face)) {
    MakeObjects();
}

TEmbeddedFont::TEmbeddedFont(QPDF& pdf, std::shared_ptr<const TFontFace> face, const TEarlierFont& earlier)
    : FPdf(pdf), FFace(std::move(face)), FFilledGlyphs(earlier.Glyphs.size()),
      FFilledMap(ToUnicodeMap(earlier.Glyphs)), FObjects(earlier.Objects) {
    FGlyphs.GoOnWith(earlier.Glyphs);
}

void TEmbeddedFont::MakeObjects() {
    const auto makeDictionary = [this] { return FPdf.makeIndirectObject(QPDFObjectHandle::newDictionary()); };
    FObjects = {makeDictionary(), makeDictionary(), makeDictionary(), FPdf.newStream(), FPdf.newStream()};
    auto& [font, descendant, descriptor, program, toUnicode] = FObjects;
    font.replaceKey("/Type", Name("Font"));
    font.replaceKey("/Subtype", Name("Type0"));
    font.replaceKey("/Encoding", Name("Identity-H"));
    font.replaceKey("/DescendantFonts", QPDFObjectHandle::newArray({descendant}));
    font.replaceKey("/ToUnicode", toUnicode);
    descendant.replaceKey("/Type", Name("Font"));
    descendant.replaceKey("/Subtype", Name(FFace->IsCff() ? "CIDFontType0" : "CIDFontType2"));
    if (!FFace->IsCff())
        descendant.replaceKey("/CIDToGIDMap", Name("Identity"));
    descendant.replaceKey(
        "/CIDSystemInfo",
        QPDFObjectHandle::parse("<< /Registry (Adobe) /Ordering (Identity) /Supplement 0 >>"));
    descendant.replaceKey("/FontDescriptor", descriptor);
    descriptor.replaceKey(FFace->IsCff() ? "/FontFile3" : "/FontFile2", program);
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
    const TFontSubset subset = SubsetProgram(*FFace, numbers);
    SetStream(FObjects.Program, subset.Program);
    QPDFObjectHandle dict = FObjects.Program.getDict();
    if (FFace->IsCff())
        dict.replaceKey("/Subtype", Name("CIDFontType0C"));
    else
        dict.replaceKey("/Length1", QPDFObjectHandle::newInteger(qint64(subset.Program.size())));
    SetStream(FObjects.ToUnicode, map);
    FillDescriptor(TagOf(subset.Program));
    FillWidths(glyphs);
    if (PdfAPart(FPdf) == 1)
        FillCidSet(subset.Glyphs);
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
    FObjects.Font.replaceKey("/BaseFont", name);
    FObjects.Descendant.replaceKey("/BaseFont", name);
    FObjects.Descriptor.replaceKey("/Type", Name("FontDescriptor"));
    FObjects.Descriptor.replaceKey("/FontName", name);
    FObjects.Descriptor.replaceKey("/Flags", QPDFObjectHandle::newInteger(flags));
    FObjects.Descriptor.replaceKey("/FontBBox",
                                   QPDFObjectHandle::newArray({Real(facts.Box[0]), Real(facts.Box[1]),
                                                               Real(facts.Box[2]), Real(facts.Box[3])}));
    FObjects.Descriptor.replaceKey("/ItalicAngle", Real(facts.ItalicAngle));
    FObjects.Descriptor.replaceKey("/Ascent", Real(std::round(FFace->Ascent() * 1000)));
    FObjects.Descriptor.replaceKey("/Descent", Real(-std::round(FFace->Descent() * 1000)));
    FObjects.Descriptor.replaceKey("/CapHeight", Real(std::round(facts.CapHeight)));
    FObjects.Descriptor.replaceKey("/StemV", Real(facts.StemWidth));
}

/// Every glyph is listed: that is how a later run knows them.
void TEmbeddedFont::FillWidths(const std::vector<TGlyph>& glyphs) {
    QPDFObjectHandle widths = QPDFObjectHandle::newArray();
    QPDFObjectHandle group = QPDFObjectHandle::newArray();
    quint32 next = 0;
    for (const TGlyph& glyph : glyphs) {
        if (glyph.Number != next || group.getArrayNItems() == 0) {
            group = QPDFObjectHandle::newArray();
            widths.appendItem(QPDFObjectHandle::newInteger(glyph.Number));
            widths.appendItem(group);
        }
        group.appendItem(Real(glyph.Advance));
        next = glyph.Number + 1;
    }
    FObjects.Descendant.replaceKey("/W", widths);
}

/// PDF/A-1 wants to be told which glyphs a subset holds: a bit for each, from the highest of the first byte
/// on (ISO 19005-1, 6.3.5; ISO 32000-1, table 124).
void TEmbeddedFont::FillCidSet(const std::vector<quint32>& glyphs) {
    std::string bits(glyphs.empty() ? 0 : glyphs.back() / 8 + 1, '\0');
    for (const quint32 glyph : glyphs)
        bits[glyph / 8] = char(quint8(bits[glyph / 8]) | 0x80U >> glyph % 8);
    QPDFObjectHandle stream = FObjects.Descriptor.getKey("/CIDSet");
    if (!stream.isStream()) {
        stream = FPdf.newStream();
        FObjects.Descriptor.replaceKey("/CIDSet", stream);
    }
    SetStream(stream, bits);
}
