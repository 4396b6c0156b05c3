#include "engine/fonts/TextShaper.h"

#include "engine/fonts/ShapedClusters.h"
#include "engine/fonts/TextItems.h"

#include <cmath>
#include <hb.h>

namespace {

/// The glyphs of an item, in a buffer that the thread's next call reuses.
hb_buffer_t* Shape(const string& text, const TTextItem& item) {
    thread_local const std::unique_ptr<hb_buffer_t, decltype(&hb_buffer_destroy)> held(hb_buffer_create(),
                                                                                       hb_buffer_destroy);
    hb_buffer_t* buffer = held.get();
    hb_buffer_clear_contents(buffer);
    // Format characters are there for readers by a glyph that shows nothing, if the face has one.
    const quint32 invisible = item.Face->InvisibleGlyph();
    hb_buffer_set_flags(buffer,
                        invisible != 0 ? HB_BUFFER_FLAG_DEFAULT : HB_BUFFER_FLAG_REMOVE_DEFAULT_IGNORABLES);
    hb_buffer_set_invisible_glyph(buffer, invisible);
    hb_buffer_set_cluster_level(buffer, HB_BUFFER_CLUSTER_LEVEL_MONOTONE_GRAPHEMES);
    hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t*>(text.utf16()), int(text.size()), item.Start,
                        int(item.End - item.Start));
    hb_buffer_set_direction(buffer, item.Level % 2 == 1 ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer, hb_script_t(item.Script));
    hb_shape(item.Face->Font(), buffer, nullptr, 0);
    return buffer;
}

class TLineBuilder {
public:
    TLineBuilder(const string& text, Double size, const TFontFace& main) : FItems(size_t(text.size()) + 1) {
        FLine.Text = text;
        FLine.Size = size;
        Extend(main);
    }

    void Add(const string& shown, const TTextItem& item) {
        TShapedRun run{item.Face, item.Level % 2 == 1, item.Start, item.End, GlyphsOf(shown, item)};
        Extend(*item.Face);
        Double width = 0;
        for (const TShapedGlyph& glyph : run.Glyphs)
            width += glyph.Advance;
        Measure(run, width);
        FLine.Width += width;
        FLine.Runs.push_back(std::move(run));
    }

    [[nodiscard]] TShapedLine Finish() {
        FItems.back() = {Single(FLine.Width), 0, 0, Single(FLine.Height)};
        FLine.Chars = TCharsInfoList(std::move(FItems));
        return std::move(FLine);
    }

private:
    void Extend(const TFontFace& face) {
        FLine.Ascent = std::max(FLine.Ascent, face.Ascent() * FLine.Size);
        FLine.Descent = std::max(FLine.Descent, face.Descent() * FLine.Size);
        FLine.Height = std::max(FLine.Height, face.LineHeight() * FLine.Size);
    }

    [[nodiscard]] std::vector<TShapedGlyph> GlyphsOf(const string& shown, const TTextItem& item) const {
        hb_buffer_t* buffer = Shape(shown, item);
        unsigned count = 0;
        const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(buffer, &count);
        const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, &count);
        const Double scale = FLine.Size / item.Face->UnitsPerEm();
        std::vector<TShapedGlyph> glyphs;
        glyphs.reserve(count);
        for (unsigned i = 0; i < count; ++i) {
            const TShapedGlyph glyph{
                infos[i].codepoint, infos[i].cluster, Single(positions[i].x_advance * scale),
                Single(positions[i].x_offset * scale), Single(positions[i].y_offset * scale)};
            const QChar c = FLine.Text[glyph.Cluster];
            const bool isInvisible = glyph.Glyph == item.Face->InvisibleGlyph();
            if (c == u'\t' && glyph.Glyph == item.Face->SpaceGlyph())
                glyphs.insert(glyphs.end(), BlanksOfTab, glyph);
            else if (!isInvisible || !(IsControl(c) || IsDirectionMark(c)))
                glyphs.push_back(glyph);
        }
        return glyphs;
    }

    void Measure(const TShapedRun& run, Double width) {
        const auto left = FLine.Width;
        const auto height = Single(run.Face->LineHeight() * FLine.Size);
        // What has no glyph stands where the run begins.
        std::fill(FItems.begin() + run.Start, FItems.begin() + run.End,
                  TCharInfo{Single(run.RightToLeft ? left + width : left), 0, 0, height});
        Double pen = left;
        ForEachCluster(run, [&](const TShapedCluster& cluster) {
            Double advance = 0;
            for (const TShapedGlyph& glyph : cluster.Glyphs)
                advance += glyph.Advance;
            if (run.RightToLeft)
                Divide(cluster, pen + advance, -advance, height);
            else
                Divide(cluster, pen, advance, height);
            pen += advance;
        });
    }

    /// Characters that take room have equal shares of their cluster's advance.
    void Divide(const TShapedCluster& cluster, Double start, Double advance, Single height) {
        const auto takesRoom = [&](quint32 i) {
            const QChar c = FLine.Text[i];
            return i == cluster.Start || (!c.isLowSurrogate() && !IsControl(c) && TakesRoom(c.unicode()));
        };
        int sharing = 0;
        for (quint32 i = cluster.Start; i < cluster.End; ++i)
            sharing += takesRoom(i) ? 1 : 0;
        int before = 0;
        for (quint32 i = cluster.Start; i < cluster.End; ++i) {
            const bool shares = takesRoom(i);
            FItems[i] = {Single(start + advance * before / sharing), 0,
                         Single(shares ? advance / sharing : 0), height};
            before += shares ? 1 : 0;
        }
    }

    TShapedLine FLine;
    std::vector<TCharInfo> FItems;
};

} // namespace

TShapedLine ShapeLine(const string& text, const TTextStyle& style) {
    TFontChain& fonts = TFontChain::Of(style.Family, style.Style);
    TLineBuilder line(text, std::isfinite(style.Size) ? std::max(style.Size, 0.0) : 0, *fonts.Main());
    const TItemizedText itemized = Itemize(text, fonts);
    for (const TTextItem& item : itemized.Items)
        line.Add(itemized.Shown, item);
    return line.Finish();
}
