#include "engine/annotations/Shapes.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr Double CircleReach = 0.5523; // of a Bézier curve's control points for a quarter of a circle

Double Part(ARGB color, int shift) {
    return Double(color.Value >> shift & 0xFF);
}

QPDFObjectHandle NewNumbers(std::initializer_list<Double> values) {
    QPDFObjectHandle array = QPDFObjectHandle::newArray();
    for (const Double value : values)
        array.appendItem(QPDFObjectHandle::newReal(value, 4));
    return array;
}

} // namespace

QPDFObjectHandle NewColor(ARGB color) {
    return NewNumbers({Part(color, 16) / 255, Part(color, 8) / 255, Part(color, 0) / 255});
}

ARGB Mixed(ARGB color, ARGB other, Double share) {
    quint32 result = color.Value & 0xFF000000;
    for (const int shift : {16, 8, 0})
        result |= quint32(std::lround(std::lerp(Part(color, shift), Part(other, shift), share))) << shift;
    return result;
}

bool IsDark(ARGB color) {
    return 0.299 * Part(color, 16) + 0.587 * Part(color, 8) + 0.114 * Part(color, 0) < 140;
}

void AppendRoundBox(TFormContent& content, const QPDFObjectHandle::Rectangle& box, Double radius) {
    const auto [x0, y0, x1, y1] = box;
    const Double r = std::min({radius, (x1 - x0) / 2, (y1 - y0) / 2});
    const Double k = r * (1 - CircleReach);
    content.Numbers({x0 + r, y0}).Op("m");
    content.Numbers({x1 - r, y0}).Op("l");
    content.Numbers({x1 - k, y0, x1, y0 + k, x1, y0 + r}).Op("c");
    content.Numbers({x1, y1 - r}).Op("l");
    content.Numbers({x1, y1 - k, x1 - k, y1, x1 - r, y1}).Op("c");
    content.Numbers({x0 + r, y1}).Op("l");
    content.Numbers({x0 + k, y1, x0, y1 - k, x0, y1 - r}).Op("c");
    content.Numbers({x0, y0 + r}).Op("l");
    content.Numbers({x0, y0 + k, x0 + k, y0, x0 + r, y0}).Op("c");
    content.Op("h");
}

QPDFObjectHandle NewVerticalGradient(ARGB start, ARGB end, Double top, Double bottom) {
    QPDFObjectHandle function = QPDFObjectHandle::newDictionary();
    function.replaceKey("/FunctionType", QPDFObjectHandle::newInteger(2));
    function.replaceKey("/Domain", NewNumbers({0, 1}));
    function.replaceKey("/C0", NewColor(start));
    function.replaceKey("/C1", NewColor(end));
    function.replaceKey("/N", QPDFObjectHandle::newInteger(1));

    QPDFObjectHandle extend = QPDFObjectHandle::newArray();
    extend.appendItem(QPDFObjectHandle::newBool(/*value=*/true));
    extend.appendItem(QPDFObjectHandle::newBool(/*value=*/true));
    QPDFObjectHandle shading = QPDFObjectHandle::newDictionary();
    shading.replaceKey("/ShadingType", QPDFObjectHandle::newInteger(2));
    shading.replaceKey("/ColorSpace", QPDFObjectHandle::newName("/DeviceRGB"));
    shading.replaceKey("/Coords", NewNumbers({0, top, 0, bottom}));
    shading.replaceKey("/Function", function);
    shading.replaceKey("/Extend", extend);
    return shading;
}
