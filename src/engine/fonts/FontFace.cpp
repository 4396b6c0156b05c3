#include "engine/fonts/FontFace.h"

#include <QFile>
#include <QHash>
#include <hb-ot.h>

#include <mutex>

static size_t qHash(const TFontSource& source, size_t seed = 0) {
    return qHashMulti(seed, source.File, source.Index, source.Variations, source.Slanted);
}

namespace {

/// The file's contents in memory of our own: a mapped file that somebody cuts short would kill the process.
hb_blob_t* ReadBlob(const NarrowString& path) {
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::ReadOnly))
        return hb_blob_get_empty();
    auto contents = std::make_unique<QByteArray>(file.readAll());
    const char* data = contents->constData();
    const auto size = static_cast<unsigned>(contents->size());
    return hb_blob_create(data, size, HB_MEMORY_MODE_READONLY, contents.release(),
                          [](void* held) { delete static_cast<QByteArray*>(held); });
}

bool HasTable(hb_face_t* face, hb_tag_t tag) {
    hb_blob_t* table = hb_face_reference_table(face, tag);
    const bool has = hb_blob_get_length(table) > 0;
    hb_blob_destroy(table);
    return has;
}

/// OS/2's word on embedding (OpenType, OS/2 table, fsType). A face without the table says nothing against it.
bool MayEmbedSubset(hb_face_t* face) {
    constexpr quint16 UsageMask = 0x000F;
    constexpr quint16 Restricted = 0x0002;
    constexpr quint16 NoSubsetting = 0x0100;
    constexpr quint16 BitmapsOnly = 0x0200;
    hb_blob_t* table = hb_face_reference_table(face, HB_TAG('O', 'S', '/', '2'));
    unsigned length = 0;
    const char* data = hb_blob_get_data(table, &length);
    const quint16 type = length < 10 ? 0 : quint16(quint8(data[8]) << 8 | quint8(data[9]));
    hb_blob_destroy(table);
    return (type & UsageMask) != Restricted && (type & (NoSubsetting | BitmapsOnly)) == 0;
}

} // namespace

std::shared_ptr<const TFontFace> TFontFace::Get(const TFontSource& source) {
    static std::mutex guard;
    static QHash<TFontSource, std::shared_ptr<const TFontFace>> faces;
    const std::lock_guard lock(guard);
    const auto known = faces.constFind(source);
    if (known != faces.constEnd())
        return *known;
    auto face = std::make_shared<const TFontFace>(source);
    if (!face->IsUsable())
        face = nullptr;
    faces.insert(source, face);
    return face;
}

TFontFace::TFontFace(const TFontSource& source) : FIsSlanted(source.Slanted) {
    hb_blob_t* blob = ReadBlob(source.File);
    FFace = hb_face_create(blob, unsigned(source.Index) & 0xFFFF);
    hb_blob_destroy(blob);
    hb_face_make_immutable(FFace);
    FIsCff = HasTable(FFace, HB_TAG('C', 'F', 'F', ' '));
    FFont = hb_font_create(FFace);
    Vary(source);
    ReadMetrics();
    hb_font_make_immutable(FFont);
}

TFontFace::~TFontFace() {
    hb_font_destroy(FFont);
    hb_face_destroy(FFace);
}

bool TFontFace::IsUsable() const {
    // The outlines of variable fonts in CFF2 can't be frozen by the subsetter that we have.
    const bool hasOutlines = FIsCff || HasTable(FFace, HB_TAG('g', 'l', 'y', 'f'));
    return hb_face_get_glyph_count(FFace) > 0 && hasOutlines && MayEmbedSubset(FFace);
}

void TFontFace::Vary(const TFontSource& source) {
    const unsigned instance = unsigned(source.Index) >> 16;
    if (instance > 0 && instance < 0x8000)
        hb_font_set_var_named_instance(FFont, instance - 1);
    std::vector<hb_variation_t> variations;
    for (const QByteArray& text : source.Variations.split(',')) {
        hb_variation_t variation{};
        if (hb_variation_from_string(text.constData(), int(text.size()), &variation))
            variations.push_back(variation);
    }
    if (!variations.empty())
        hb_font_set_variations(FFont, variations.data(), unsigned(variations.size()));
}

void TFontFace::ReadMetrics() {
    FUnitsPerEm = std::max(hb_face_get_upem(FFace), 1U);
    hb_font_extents_t extents{};
    hb_font_get_h_extents(FFont, &extents);
    FAscent = std::max(extents.ascender / FUnitsPerEm, 0.0);
    FDescent = std::max(-extents.descender / FUnitsPerEm, 0.0);
    FLineHeight = FAscent + FDescent + std::max(extents.line_gap / FUnitsPerEm, 0.0);
    FSpaceGlyph = GlyphOf(U' ');
    FInvisibleGlyph = GlyphOf(0x200C);
}

Double TFontFace::Advance(quint32 glyph) const {
    return hb_font_get_glyph_h_advance(FFont, glyph) * 1000 / FUnitsPerEm;
}

quint32 TFontFace::GlyphOf(char32_t character) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(FFont, character, &glyph) != 0 ? glyph : 0;
}
