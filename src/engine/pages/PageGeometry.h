#pragma once
// Where a page lies in user space and how it is shown; the mapping between layer space and user space.
#include "base/Text.h"

#include <array>

/// A rectangle in user space; normalised: x0 <= x1, y0 <= y1.
struct TPageBox {
    Double x0 = 0;
    Double y0 = 0;
    Double x1 = 0;
    Double y1 = 0;

    [[nodiscard]] Double Width() const { return x1 - x0; }
    [[nodiscard]] Double Height() const { return y1 - y0; }
    [[nodiscard]] bool IsEmpty() const { return !(x1 > x0 && y1 > y0); }
    [[nodiscard]] TPageBox Normalised() const;
    [[nodiscard]] TPageBox CutBy(const TPageBox& other) const;
    bool operator==(const TPageBox&) const = default;
};

/// Where a page lies and how it is turned.
struct TPageGeometry {
    TPageBox Crop;       ///< crop box cut by the media box, in user units
    int Rotation = 0;    ///< 0, 90, 180 or 270, clockwise
    Double UserUnit = 1; ///< points in a user unit

    /// Size in points as displayed, after rotation.
    [[nodiscard]] Double Width() const;
    [[nodiscard]] Double Height() const;

    /// The user-space box of a rectangle in layer space (points, origin at the top left corner of the page
    /// as displayed, y down), given by two corners.
    [[nodiscard]] TPageBox ToUserSpace(Double left, Double top, Double right, Double bottom) const;

    /// The matrix [a b c d e f] that puts a form on the page whose box is [0 0 Width() Height()], y up.
    [[nodiscard]] std::array<Double, 6> FormMatrix() const;

    bool operator==(const TPageGeometry&) const = default;
};

/// `angle` as 0, 90, 180 or 270; what is no quarter turn counts as upright.
[[nodiscard]] int NormalRotation(long long angle);
