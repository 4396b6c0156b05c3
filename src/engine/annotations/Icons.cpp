#include "engine/annotations/Icons.h"

#include "engine/layers/Drawing.h"

namespace {

constexpr ARGB White = 0xFFFFFFFF;
constexpr ARGB Black = 0xFF000000;

/// A bubble with its tail at the lower left.
void AppendBubble(TFormContent& content) {
    constexpr Double K = 1.3; // control points of its corners, which are quarters of a circle
    content.Numbers({3.9, 19.25}).Op("m");
    content.Numbers({16.1, 19.25}).Op("l");
    content.Numbers({16.1 + 3.15 - K, 19.25, 19.25, 16.1 + 3.15 - K, 19.25, 16.1}).Op("c");
    content.Numbers({19.25, 8.9}).Op("l");
    content.Numbers({19.25, 8.9 - 3.15 + K, 16.1 + 3.15 - K, 5.75, 16.1, 5.75}).Op("c");
    content.Numbers({9.6, 5.75}).Op("l");
    content.Numbers({4.9, 1.1}).Op("l");
    content.Numbers({4.9, 5.75}).Op("l");
    content.Numbers({3.9, 5.75}).Op("l");
    content.Numbers({3.9 - 3.15 + K, 5.75, 0.75, 8.9 - 3.15 + K, 0.75, 8.9}).Op("c");
    content.Numbers({0.75, 16.1}).Op("l");
    content.Numbers({0.75, 16.1 + 3.15 - K, 3.9 - 3.15 + K, 19.25, 3.9, 19.25}).Op("c");
    content.Op("h");
}

/// Half a circle from (x0, y) to (x1, y), bulging to `y + height`.
void AppendBow(TFormContent& content, Double x0, Double x1, Double y, Double height) {
    const Double reach = height * 4 / 3;
    content.Numbers({x0, y + reach, x1, y + reach, x1, y}).Op("c");
}

void AppendPaperclip(TFormContent& content) {
    content.Numbers({10.1, 13.2}).Op("m");
    content.Numbers({10.1, 6.9}).Op("l");
    AppendBow(content, 10.1, 6.3, 6.9, -1.9);
    content.Numbers({6.3, 15.2}).Op("l");
    AppendBow(content, 6.3, 13.1, 15.2, 3.4);
    content.Numbers({13.1, 6.4}).Op("l");
    AppendBow(content, 13.1, 3.1, 6.4, -5);
    content.Numbers({3.1, 13.2}).Op("l");
}

} // namespace

void DrawCommentIcon(TFormContent& content, ARGB color) {
    content.Op("q 1 j 1 J");
    content.Op("q");
    AppendBubble(content);
    content.Op("W n");
    const ARGB light = Mixed(color, White, IsDark(color) ? 0.12 : 0.4);
    content.Raw(content.UseShading(NewVerticalGradient(light, color, 19, 4))).Op(" sh").Op("Q");
    AppendStrokeColor(content, Mixed(color, Black, 0.5));
    content.Op("1 w");
    AppendBubble(content);
    content.Op("S");
    AppendStrokeColor(content, IsDark(color) ? White : Mixed(color, Black, 0.72));
    content.Op("1.3 w");
    content.Op("4.8 15.6 m 15.2 15.6 l 4.8 12.5 m 15.2 12.5 l 4.8 9.4 m 11.6 9.4 l S").Op("Q");
}

void DrawPaperclipIcon(TFormContent& content, ARGB color) {
    content.Op("q 1 j 1 J 1 G 2.8 w");
    AppendPaperclip(content);
    content.Op("S");
    AppendStrokeColor(content, color);
    content.Op("1.5 w");
    AppendPaperclip(content);
    content.Op("S").Op("Q");
}
