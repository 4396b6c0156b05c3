#include "engine/fonts/FontProgram.h"

#include "base/Exceptions.h"
#include "engine/fonts/CffCharset.h"

#include <hb-ot.h>
#include <hb-subset.h>

#include <cmath>
#include <cstring>

namespace {

constexpr hb_tag_t Cff = HB_TAG('C', 'F', 'F', ' ');

template <auto Destroy> struct TDestroy {
    template <typename T> void operator()(T* object) const { Destroy(object); }
};
using TInput = std::unique_ptr<hb_subset_input_t, TDestroy<hb_subset_input_destroy>>;
using TPlan = std::unique_ptr<hb_subset_plan_t, TDestroy<hb_subset_plan_destroy>>;
using TFace = std::unique_ptr<hb_face_t, TDestroy<hb_face_destroy>>;
using TBlob = std::unique_ptr<hb_blob_t, TDestroy<hb_blob_destroy>>;

std::string_view BytesOf(const TBlob& blob) {
    unsigned length = 0;
    const char* data = hb_blob_get_data(blob.get(), &length);
    return {data, length};
}

TBlob TableOf(hb_face_t* face, hb_tag_t tag) {
    return TBlob(hb_face_reference_table(face, tag));
}

qint16 Int16At(std::string_view bytes, size_t at) {
    return at + 2 > bytes.size() ? qint16(0) : qint16(quint8(bytes[at]) << 8 | quint8(bytes[at + 1]));
}

void DropTablesThatPdfIgnores(hb_subset_input_t* input, hb_face_t* face) {
    constexpr hb_tag_t kept[] = {HB_TAG('h', 'e', 'a', 'd'),
                                 HB_TAG('h', 'h', 'e', 'a'),
                                 HB_TAG('h', 'm', 't', 'x'),
                                 HB_TAG('m', 'a', 'x', 'p'),
                                 HB_TAG('l', 'o', 'c', 'a'),
                                 HB_TAG('g', 'l', 'y', 'f'),
                                 Cff};
    hb_set_t* dropped = hb_subset_input_set(input, HB_SUBSET_SETS_DROP_TABLE_TAG);
    const unsigned count = hb_face_get_table_tags(face, 0, nullptr, nullptr);
    std::vector<hb_tag_t> tags(count);
    unsigned filled = count;
    hb_face_get_table_tags(face, 0, &filled, tags.data());
    for (const hb_tag_t tag : tags)
        if (std::find(std::begin(kept), std::end(kept), tag) == std::end(kept))
            hb_set_add(dropped, tag);
}

/// A variable font becomes the plain one that the lines were shaped with.
void FreezeAxes(hb_subset_input_t* input, const TFontFace& face) {
    unsigned count = hb_ot_var_get_axis_count(face.Face());
    if (count == 0)
        return;
    std::vector<hb_ot_var_axis_info_t> axes(count);
    hb_ot_var_get_axis_infos(face.Face(), 0, &count, axes.data());
    unsigned known = 0;
    const float* values = hb_font_get_var_coords_design(face.Font(), &known);
    for (const hb_ot_var_axis_info_t& axis : axes)
        hb_subset_input_pin_axis_location(input, face.Face(), axis.tag,
                                          axis.axis_index < known ? values[axis.axis_index]
                                                                  : axis.default_value);
}

/// `flags` beside those that we always set.
TPlan PlanOf(const TFontFace& face, const std::vector<quint32>& glyphs, unsigned flags) {
    const TInput input(hb_subset_input_create_or_fail());
    if (!input)
        return nullptr;
    hb_subset_input_set_flags(input.get(),
                              flags | HB_SUBSET_FLAGS_NO_HINTING | HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
    hb_set_t* wanted = hb_subset_input_glyph_set(input.get());
    for (const quint32 glyph : glyphs)
        hb_set_add(wanted, glyph);
    DropTablesThatPdfIgnores(input.get(), face.Face());
    FreezeAxes(input.get(), face);
    return TPlan(hb_subset_plan_create_or_fail(face.Face(), input.get()));
}

TFace Execute(const TPlan& plan) {
    return TFace(plan ? hb_subset_plan_execute_or_fail(plan.get()) : nullptr);
}

/// The numbers in the face of the glyphs that a plan takes along.
std::vector<quint32> GlyphsOf(const TPlan& plan, hb_face_t* subset) {
    const hb_map_t* numbers = hb_subset_plan_new_to_old_glyph_mapping(plan.get());
    std::vector<quint32> glyphs;
    for (quint32 i = 0; i < hb_face_get_glyph_count(subset); ++i)
        if (hb_map_has(numbers, i) != 0)
            glyphs.push_back(hb_map_get(numbers, i));
    return glyphs;
}

/// Glyphs keep their numbers.
TFontSubset TrueTypeProgram(const TFontFace& face, const std::vector<quint32>& glyphs) {
    const TPlan plan = PlanOf(face, glyphs, HB_SUBSET_FLAGS_RETAIN_GIDS);
    const TFace subset = Execute(plan);
    if (!subset)
        return {};
    return {std::string(BytesOf(TBlob(hb_face_reference_blob(subset.get())))), GlyphsOf(plan, subset.get())};
}

/// Glyphs keep their numbers, or move together and keep them as their CIDs. The latter is for large fonts:
/// each number that is left free takes some bytes which hardly compress.
TFontSubset CffProgram(const TFontFace& face, const std::vector<quint32>& glyphs) {
    const bool hasCids = HasCids(BytesOf(TableOf(face.Face(), Cff)));
    const TPlan plan = PlanOf(face, glyphs, hasCids ? HB_SUBSET_FLAGS_DEFAULT : HB_SUBSET_FLAGS_RETAIN_GIDS);
    const TFace subset = Execute(plan);
    if (!subset)
        return {};
    TFontSubset made{std::string(BytesOf(TableOf(subset.get(), Cff))), GlyphsOf(plan, subset.get())};
    if (hasCids && !SetCids(made.Program, made.Glyphs)) // none is left out: the numbers are those of a row
        return {};
    return made;
}

std::string NameOf(hb_face_t* face) {
    char text[128] = "";
    unsigned size = sizeof text;
    hb_ot_name_get_utf8(face, HB_OT_NAME_ID_POSTSCRIPT_NAME, HB_LANGUAGE_INVALID, &size, text);
    std::string name;
    for (const char* c = text; *c != '\0'; ++c)
        if ((*c >= '0' && *c <= '9') || (*c >= 'A' && *c <= 'Z') || (*c >= 'a' && *c <= 'z') || *c == '-' ||
            *c == '_')
            name += *c;
    return name.empty() ? "Font" : name;
}

} // namespace

TFontSubset SubsetProgram(const TFontFace& face, const std::vector<quint32>& glyphs) {
    TFontSubset subset = face.IsCff() ? CffProgram(face, glyphs) : TrueTypeProgram(face, glyphs);
    if (subset.Program.empty())
        throw Exception(QStringLiteral("The font \"%1\" is damaged and can't be embedded.")
                            .arg(QString::fromStdString(NameOf(face.Face()))));
    return subset;
}

TFontFacts FactsOf(const TFontFace& face) {
    const Double scale = 1000 / face.UnitsPerEm();
    TFontFacts facts;
    facts.PostScriptName = NameOf(face.Face());
    const TBlob head = TableOf(face.Face(), HB_TAG('h', 'e', 'a', 'd'));
    for (size_t i = 0; i < facts.Box.size(); ++i)
        facts.Box[i] = std::round(Int16At(BytesOf(head), 36 + 2 * i) * scale);
    const TBlob post = TableOf(face.Face(), HB_TAG('p', 'o', 's', 't'));
    facts.ItalicAngle = face.IsSlanted() ? -12 : Int16At(BytesOf(post), 4);
    facts.IsFixedPitch = Int16At(BytesOf(post), 12) != 0 || Int16At(BytesOf(post), 14) != 0;
    hb_position_t capHeight = 0;
    if (!hb_ot_metrics_get_position(face.Font(), HB_OT_METRICS_TAG_CAP_HEIGHT, &capHeight) || capHeight <= 0)
        facts.CapHeight = face.Ascent() * 1000;
    else
        facts.CapHeight = capHeight * scale;
    const Double weight = hb_style_get_value(face.Font(), HB_STYLE_TAG_WEIGHT);
    facts.StemWidth = std::round(50 + std::pow(weight / 65, 2));
    return facts;
}
