#include "engine/fonts/DocumentFonts.h"

#include "engine/content/FormContent.h"
#include "engine/fonts/EmbeddedFont.h"
#include "engine/fonts/TextOperators.h"

namespace {

/// Shows one run of a line.
class TRunShower {
public:
    TRunShower(TTextOperators& operators, TEmbeddedFont& font, const TShapedLine& line, const TShapedRun& run)
        : FOperators(operators), FFont(font), FLine(line), FRun(run), FUnit(1000 / line.Size) {}

    /// From `start` on, in 1/1000 em from the line's left end; returns where the run ends.
    Double Show(Double start) {
        FPen = start;
        ForEachCluster(FRun, [this](const TShapedCluster& cluster) { Take(cluster); });
        ShowPending();
        return FPen;
    }

private:
    [[nodiscard]] QStringView TextOf(quint32 start, quint32 end) const {
        return QStringView(FLine.Text).sliced(start, end - start);
    }

    [[nodiscard]] bool Note(const TShapedCluster& cluster) {
        const QStringView text = TextOf(cluster.Start, cluster.End);
        const string stripped = IsReadable(text) ? string() : ReadableText(text);
        return FFont.Glyphs().Note(FFont.Face(), cluster, stripped.isNull() ? text : stripped,
                                   FRun.RightToLeft);
    }

    void Take(const TShapedCluster& cluster) {
        // Readers take a mark above or below its letter for something on another line or in the next word.
        const bool isStacked =
            std::any_of(cluster.Glyphs.begin(), cluster.Glyphs.end(), [&](const TShapedGlyph& glyph) {
                return glyph.OffsetY != 0 || (glyph.Advance == 0 && !FRun.RightToLeft &&
                                              glyph.Glyph != FRun.Face->InvisibleGlyph());
            });
        const bool tells = Note(cluster) && !isStacked;
        // Each cluster from right to left has a span of its own, since it is the reader who puts them in
        // order.
        if (!FGlyphs.empty() && (tells != FTells || (!tells && FRun.RightToLeft)))
            ShowPending();
        if (FGlyphs.empty())
            FStart = cluster.Start;
        FGlyphs = {FGlyphs.empty() ? cluster.Glyphs.data() : FGlyphs.data(),
                   cluster.Glyphs.data() + cluster.Glyphs.size()};
        FEnd = cluster.End;
        FTells = tells;
    }

    void ShowPending() {
        if (FGlyphs.empty())
            return;
        if (!FTells)
            FOperators.OpenSpan(ReadableText(TextOf(FStart, FEnd)));
        for (const TShapedGlyph& glyph : FGlyphs) {
            FOperators.ShowGlyph(glyph.Glyph, FFont.Glyphs().Advance(glyph.Glyph),
                                 FPen + glyph.OffsetX * FUnit, glyph.OffsetY * FUnit);
            FPen += glyph.Advance * FUnit;
        }
        if (!FTells)
            FOperators.CloseSpan();
        FGlyphs = {};
    }

    TTextOperators& FOperators;
    TEmbeddedFont& FFont;
    const TShapedLine& FLine;
    const TShapedRun& FRun;
    const Double FUnit;
    Double FPen = 0;
    // Clusters that are still to be shown, side by side, and whether their glyphs tell their text.
    std::span<const TShapedGlyph> FGlyphs;
    quint32 FStart = 0;
    quint32 FEnd = 0;
    bool FTells = true;
};

} // namespace

TDocumentFonts::TDocumentFonts(QPDF& pdf) : FPdf(pdf) {}
TDocumentFonts::~TDocumentFonts() = default;

TEmbeddedFont& TDocumentFonts::FontOf(const std::shared_ptr<const TFontFace>& face) {
    for (const auto& font : FFonts)
        if (&font->Face() == face.get())
            return *font;
    return *FFonts.emplace_back(NewFont(face));
}

std::unique_ptr<TEmbeddedFont> TDocumentFonts::NewFont(const std::shared_ptr<const TFontFace>& face) {
    if (!FEarlier)
        FEarlier = FFindEarlier ? FFindEarlier() : std::vector<QPDFObjectHandle>();
    for (const QPDFObjectHandle& font : *FEarlier)
        if (const auto earlier = ReadEarlierFont(font, *face))
            return std::make_unique<TEmbeddedFont>(FPdf, face, *earlier);
    return std::make_unique<TEmbeddedFont>(FPdf, face);
}

void TDocumentFonts::ShowLine(TFormContent& content, const TShapedLine& line, Double size, Double x,
                              Double y) {
    if (!(line.Size > 0))
        return;
    TTextOperators operators(size, x, y);
    Double pen = 0;
    for (const TShapedRun& run : line.Runs) {
        if (run.Glyphs.empty())
            continue;
        TEmbeddedFont& font = FontOf(run.Face);
        operators.SetFont(content.UseFont(font.Font()), run.Face->IsSlanted() ? SlantOfUpright : 0);
        pen = TRunShower(operators, font, line, run).Show(pen);
    }
    content.Raw(operators.Finish());
}

void TDocumentFonts::Fill() {
    for (const auto& font : FFonts)
        font->Fill();
    FEarlier.reset();
}

int TDocumentFonts::MinorVersion() const {
    constexpr int CffPrograms = 3;
    const auto isCff = [](const auto& font) { return font->Face().IsCff(); };
    return std::any_of(FFonts.begin(), FFonts.end(), isCff) ? CffPrograms : 0;
}
