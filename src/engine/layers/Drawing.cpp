#include "engine/layers/Drawing.h"

#include <algorithm>

namespace {

int AlphaOf(ARGB color) {
    return int(color.Value >> 24);
}

void AppendColor(TFormContent& content, ARGB color, const char* grey, const char* rgb) {
    const auto part = [&](int shift) { return Double(color.Value >> shift & 0xFF) / 255; };
    const Double red = part(16);
    const Double green = part(8);
    const Double blue = part(0);
    if (red == green && green == blue)
        content.Number(red).Op(grey);
    else
        content.Numbers({red, green, blue}).Op(rgb);
}

bool Fills(const TTextPaint& paint) {
    return AlphaOf(paint.Fill) > 0;
}

bool Strokes(const TTextPaint& paint) {
    return AlphaOf(paint.Stroke) > 0 && paint.PenWidth > 0;
}

/// A form begins with black fill, mode 0 and full opacity (ISO 32000-1, table 52 and 104).
bool IsPlain(const TTextPaint& paint) {
    return paint.Fill == 0xFF000000 && !Strokes(paint);
}

} // namespace

QPDFObjectHandle TDocumentDrawing::OpacityState(int fillAlpha, int strokeAlpha) {
    QPDFObjectHandle& state = FOpacities[{fillAlpha, strokeAlpha}];
    if (!state.isInitialized()) {
        state = QPDFObjectHandle::newDictionary();
        state.replaceKey("/ca", QPDFObjectHandle::newReal(fillAlpha / 255.0, 4));
        state.replaceKey("/CA", QPDFObjectHandle::newReal(strokeAlpha / 255.0, 4));
        state = Pdf.makeIndirectObject(state);
    }
    return state;
}

int TDocumentDrawing::MinorVersion() const {
    constexpr int Compression = 2; // of forms; their fonts are as old
    constexpr int Transparency = 4;
    return std::max({Compression, FNeeded, Fonts.MinorVersion(), Images.MinorVersion(),
                     FOpacities.empty() ? 0 : Transparency});
}

QPDFObjectHandle TDocumentDrawing::SharedStream(const std::string& content) {
    QPDFObjectHandle& stream = FStreams[content];
    if (!stream.isInitialized())
        stream = Pdf.newStream(content); // too short for compression to pay
    return stream;
}

void AppendFillColor(TFormContent& content, ARGB color) {
    AppendColor(content, color, "g", "rg");
}

void AppendStrokeColor(TFormContent& content, ARGB color) {
    AppendColor(content, color, "G", "RG");
}

bool BeginText(TDrawing& to, const TTextPaint& paint) {
    const bool fills = Fills(paint);
    const bool strokes = Strokes(paint);
    if (!fills && !strokes)
        return false;
    if (IsPlain(paint))
        return true;
    TFormContent& content = to.Content;
    content.Op("q");
    const int fillAlpha = fills ? AlphaOf(paint.Fill) : 255;
    const int strokeAlpha = strokes ? AlphaOf(paint.Stroke) : 255;
    if (fillAlpha != 255 || strokeAlpha != 255)
        content.Raw(content.UseState(to.Document.OpacityState(fillAlpha, strokeAlpha))).Op(" gs");
    if (fills)
        AppendFillColor(content, paint.Fill);
    if (strokes) {
        AppendStrokeColor(content, paint.Stroke);
        content.Number(paint.PenWidth).Op("w");
        content.Op(fills ? "2 Tr" : "1 Tr"); // table 106: 1 strokes, 2 fills, then strokes
    }
    return true;
}

void EndText(TDrawing& to, const TTextPaint& paint) {
    if (!IsPlain(paint))
        to.Content.Op("Q");
}
