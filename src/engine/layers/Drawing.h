#pragma once
// Where layers draw themselves: a form XObject in points, y up, and what the document has for all forms.
#include "engine/content/FormContent.h"
#include "engine/fonts/DocumentFonts.h"
#include "engine/images/DocumentImages.h"

#include <algorithm>
#include <map>

/// What one document's forms share. Made for the first thing that is put on a page.
struct TDocumentDrawing {
    explicit TDocumentDrawing(QPDF& pdf) : Pdf(pdf), Fonts(pdf), Images(pdf) {}

    /// The graphics state that makes fills and strokes as opaque as their alphas, 0 to 255, say.
    [[nodiscard]] QPDFObjectHandle OpacityState(int fillAlpha, int strokeAlpha);
    /// A content stream of that text, one for all pages that need it.
    [[nodiscard]] QPDFObjectHandle SharedStream(const std::string& content);

    /// The minor version of PDF 1 that all this needs.
    [[nodiscard]] int MinorVersion() const;
    /// For what this doesn't see by itself.
    void RequireVersion(int minor) { FNeeded = std::max(FNeeded, minor); }

    QPDF& Pdf;
    TDocumentFonts Fonts;
    TDocumentImages Images;

private:
    int FNeeded = 0;
    std::map<std::pair<int, int>, QPDFObjectHandle> FOpacities;
    std::map<std::string, QPDFObjectHandle> FStreams;
};

struct TDrawing {
    TDocumentDrawing& Document;
    TDocumentFonts& Fonts;
    TDocumentImages& Images;
    TFormContent& Content;
    Double Width;  ///< of the form, in points
    Double Height; ///< what y is taken from to go from layer space to the form's

    TDrawing(TDocumentDrawing& document, TFormContent& content, Double width, Double height)
        : Document(document), Fonts(document.Fonts), Images(document.Images), Content(content), Width(width),
          Height(height) {}
};

/// Where annotations go.
struct TAnnotationDrawing {
    TDocumentDrawing& Document;
    QPDFObjectHandle Page;                     ///< its dictionary
    std::vector<QPDFObjectHandle> Annotations; ///< those written so far
};

struct TTextPaint {
    ARGB Fill;
    ARGB Stroke;
    Double PenWidth;
};

/// Sets colours, opacity and rendering mode for text, between q and Q where anything but the plain state is
/// needed. False, and nothing is written, if the paint shows nothing.
[[nodiscard]] bool BeginText(TDrawing& to, const TTextPaint& paint);
void EndText(TDrawing& to, const TTextPaint& paint);

/// Appends `r g b op`, as in "1 0 0 rg"; grey where the three are the same.
void AppendFillColor(TFormContent& content, ARGB color);
void AppendStrokeColor(TFormContent& content, ARGB color);
