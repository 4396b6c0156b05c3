#pragma once
// The fonts that we put into one document: one resource for each face, shared by all its pages.
#include "engine/fonts/TextShaper.h"
#include "engine/pdf/Qpdf.h"

#include <functional>

class TFormContent;
class TEmbeddedFont;

class TDocumentFonts {
public:
    explicit TDocumentFonts(QPDF& pdf);
    ~TDocumentFonts();
    Q_DISABLE_COPY(TDocumentFonts)

    /// What finds the fonts in forms that earlier runs have put on the document's pages. Asked when a face is
    /// first needed.
    using TFindFonts = std::function<std::vector<QPDFObjectHandle>()>;
    void SetEarlierFonts(TFindFonts find) { FFindEarlier = std::move(find); }

    /// Appends BT ... ET, which shows the line with its left end and baseline at (x, y), y up, in points.
    /// Colours and the text rendering mode are the caller's. A line without anything to show appends nothing.
    void ShowLine(TFormContent& content, const TShapedLine& line, Double size, Double x, Double y);

    /// Writes the glyphs shown so far into the font objects, which are empty until then. Called before each
    /// save; when more lines were shown since, the same objects are written again.
    void Fill();

    /// The minor version of PDF 1 that they need.
    [[nodiscard]] int MinorVersion() const;

private:
    [[nodiscard]] TEmbeddedFont& FontOf(const std::shared_ptr<const TFontFace>& face);
    [[nodiscard]] std::unique_ptr<TEmbeddedFont> NewFont(const std::shared_ptr<const TFontFace>& face);

    QPDF& FPdf;
    std::vector<std::unique_ptr<TEmbeddedFont>> FFonts;
    TFindFonts FFindEarlier;
    std::optional<std::vector<QPDFObjectHandle>> FEarlier; ///< what it found since the last save
};
