#include "engine/pages/PageGeometry.h"

#include <algorithm>

TPageBox TPageBox::Normalised() const {
    return {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
}

TPageBox TPageBox::CutBy(const TPageBox& other) const {
    return {std::max(x0, other.x0), std::max(y0, other.y0), std::min(x1, other.x1), std::min(y1, other.y1)};
}

Double TPageGeometry::Width() const {
    return (Rotation % 180 == 0 ? Crop.Width() : Crop.Height()) * UserUnit;
}

Double TPageGeometry::Height() const {
    return (Rotation % 180 == 0 ? Crop.Height() : Crop.Width()) * UserUnit;
}

TPageBox TPageGeometry::ToUserSpace(Double left, Double top, Double right, Double bottom) const {
    const Double u0 = left / UserUnit;
    const Double v0 = top / UserUnit;
    const Double u1 = right / UserUnit;
    const Double v1 = bottom / UserUnit;
    const TPageBox& c = Crop;
    switch (Rotation) {
    case 90:
        return TPageBox{c.x0 + v0, c.y0 + u0, c.x0 + v1, c.y0 + u1}.Normalised();
    case 180:
        return TPageBox{c.x1 - u0, c.y0 + v0, c.x1 - u1, c.y0 + v1}.Normalised();
    case 270:
        return TPageBox{c.x1 - v0, c.y1 - u0, c.x1 - v1, c.y1 - u1}.Normalised();
    default:
        return TPageBox{c.x0 + u0, c.y1 - v0, c.x0 + u1, c.y1 - v1}.Normalised();
    }
}

std::array<Double, 6> TPageGeometry::FormMatrix() const {
    const Double s = 1 / UserUnit;
    switch (Rotation) {
    case 90:
        return {0, s, -s, 0, Crop.x1, Crop.y0};
    case 180:
        return {-s, 0, 0, -s, Crop.x1, Crop.y1};
    case 270:
        return {0, -s, s, 0, Crop.x0, Crop.y1};
    default:
        return {s, 0, 0, s, Crop.x0, Crop.y0};
    }
}

int NormalRotation(long long angle) {
    if (angle % 90 != 0)
        return 0;
    return int((angle % 360 + 360) % 360);
}
