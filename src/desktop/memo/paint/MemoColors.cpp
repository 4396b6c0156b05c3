#include "desktop/memo/paint/MemoColors.h"

#include <algorithm>
#include <cmath>

namespace {

/// Relative luminance, WCAG 2.
double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor Plain(TColor color) {
    return {int(color & 0xFF), int(color >> 8 & 0xFF), int(color >> 16 & 0xFF)};
}

constexpr TColor Hint = 0xFF000018;
constexpr TColor HintText = 0xFF000017;

constexpr double Step = 0.01; // of lightness

/// Colours with this top byte are numbers of the desktop's colours.
bool IsSystem(TColor color) {
    return color >> 24 == 0xFF;
}

/// Paper rather than ink.
bool IsPale(TColor color) {
    return Plain(color).lightnessF() > 0.55F;
}

/// A colour of the desktop that light text belongs on, though the palette be a light one.
bool IsDarkGround(const QColor& back, TColor color) {
    return IsSystem(color) && Contrast(Qt::white, back) > Contrast(Qt::black, back);
}

QColor Mixed(const QColor& a, const QColor& b, double share) {
    const auto mix = [share](float x, float y) { return float(x + (y - x) * share); };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()))
        .rgb(); // what pixels can hold
}

QColor WithLightness(const QColor& color, double saturation, double lightness) {
    return QColor::fromHslF(std::max(0.0F, color.hslHueF()), float(saturation), float(lightness)).toRgb();
}

TMemoTints TintsOf(const QPalette& palette, bool dark) {
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    const QColor ink = palette.color(QPalette::Active, QPalette::Text);
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    TMemoTints tints;
    tints.Base = base;
    tints.Ink = ink;
    tints.CurrentLine = Mixed(base, highlight, dark ? 0.13 : 0.07);
    tints.RightMargin = Mixed(base, ink, dark ? 0.16 : 0.11);
    tints.Selection = highlight;
    tints.SelectedText = palette.color(QPalette::Active, QPalette::HighlightedText);
    tints.SelectionAway = Mixed(base, highlight, dark ? 0.35 : 0.25);
    tints.Error = dark ? QColor(0xFF, 0x6B, 0x68) : QColor(0xE0, 0x2B, 0x2B);
    tints.BreakPoint = dark ? QColor(0xC7, 0x4E, 0x4E) : QColor(0xDB, 0x58, 0x60);
    tints.BreakPointLine = Mixed(base, tints.BreakPoint, dark ? 0.2 : 0.12);
    tints.Bracket = Mixed(base, highlight, dark ? 0.45 : 0.28);
    tints.Match = Mixed(base, QColor(0xFF, 0xC1, 0x07), dark ? 0.22 : 0.4);
    tints.Gutter = Mixed(base, ink, dark ? 0.035 : 0.03);
    tints.Number = Mixed(base, ink, dark ? 0.42 : 0.45);
    tints.CurrentNumber = Mixed(base, ink, 0.9);
    tints.Fold = Mixed(base, ink, dark ? 0.45 : 0.4);
    tints.Modified = dark ? QColor(0xE2, 0xB0, 0x3A) : QColor(0xE8, 0xA6, 0x1C);
    tints.Saved = dark ? QColor(0x57, 0xA6, 0x5C) : QColor(0x4C, 0xAF, 0x50);
    tints.Bookmark = dark ? QColor(0x3D, 0x7E, 0xD0) : QColor(0x2F, 0x74, 0xD0);
    tints.OnMark = Qt::white;
    return tints;
}

} // namespace

double Contrast(const QColor& a, const QColor& b) {
    const auto [less, more] = std::minmax({Luminance(a), Luminance(b)});
    return (more + 0.05) / (less + 0.05);
}

TMemoColors::TMemoColors(const QPalette& palette)
    : FPalette(palette), FKey(palette.cacheKey()),
      FDark(Luminance(palette.color(QPalette::Active, QPalette::Base)) <
            Luminance(palette.color(QPalette::Active, QPalette::Text))) {
    Tints = TintsOf(palette, FDark);
}

/// The desktop's colours by their numbers.
QColor TMemoColors::System(TColor color) const {
    const auto of = [this](QPalette::ColorRole role) { return FPalette.color(QPalette::Active, role); };
    switch (color & 0xFFFFFF) {
    case 8: // text of a window
        return of(QPalette::Text);
    case 13:
        return of(QPalette::Highlight);
    case 14:
        return of(QPalette::HighlightedText);
    case 15: // faces of buttons
        return of(QPalette::Button);
    case 17:
        return FPalette.color(QPalette::Disabled, QPalette::Text);
    case 23: // text of a hint
        return of(QPalette::ToolTipText);
    case 24: // a hint
        return of(QPalette::ToolTipBase);
    default: // 5, a window
        return of(QPalette::Base);
    }
}

QColor TMemoColors::Back(TColor color) const {
    if (color == clWhite || color == clNone)
        return Tints.Base;
    if (IsSystem(color))
        return System(color);
    const QColor plain = Plain(color);
    if (!FDark)
        return plain;
    constexpr double Darkest = 0.3;
    constexpr double Room = 7; // to white, so that text of any hue can be told from it
    double lightness = plain.lightnessF();
    lightness = std::min(IsPale(color) ? 1 - lightness : lightness, Darkest);
    QColor back = WithLightness(plain, plain.hslSaturationF(), lightness);
    while (Contrast(back, Qt::white) < Room) {
        lightness -= Step;
        back = WithLightness(plain, plain.hslSaturationF(), lightness);
    }
    return back;
}

QColor TMemoColors::Text(TColor color, TColor on) const {
    if (IsSystem(color))
        return System(color);
    if (color == clBlack && on == Hint)
        return System(HintText);
    if (!FDark && !IsDarkGround(Back(on), on))
        return color == clBlack && on == clWhite ? Tints.Ink : Plain(color);
    const quint64 key = quint64(color) << 32 | on;
    const auto known = FTexts.constFind(key);
    return known != FTexts.constEnd() ? *known : *FTexts.insert(key, OnDark(color, on));
}

/// The lightness is turned round where the background's was, and brought away from the background until the
/// contrast will do.
QColor TMemoColors::OnDark(TColor color, TColor on) const {
    constexpr double MostSaturated = 0.8; // pure colours glare on dark ground
    const QColor back = Back(on);
    const bool turned = on == clNone || IsSystem(on) || IsPale(on);
    if (color == clBlack && turned && Contrast(Tints.Ink, back) >= LeastContrast)
        return Tints.Ink;
    const QColor plain = Plain(color);
    const double saturation = std::min(double(plain.hslSaturationF()), MostSaturated);
    const double farthest = Contrast(Qt::white, back) > Contrast(Qt::black, back) ? 1 : 0;
    double lightness = turned ? 1 - plain.lightnessF() : plain.lightnessF();
    QColor ink = WithLightness(plain, saturation, lightness);
    while (Contrast(ink, back) < LeastContrast && lightness != farthest) {
        lightness = std::clamp(lightness + (farthest > 0 ? Step : -Step), 0.0, 1.0);
        ink = WithLightness(plain, saturation, lightness);
    }
    return ink;
}
