#include "agent/AgentPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

/// A rectangle with round corners, in a square of side 1 whose origin is at the top left.
struct TShape {
    double Left, Top, Right, Bottom, Radius;
    quint32 Colour; ///< 0xRRGGBB

    [[nodiscard]] bool Holds(double x, double y) const {
        const double dx = std::max({Left + Radius - x, x - (Right - Radius), 0.0});
        const double dy = std::max({Top + Radius - y, y - (Bottom - Radius), 0.0});
        return std::hypot(dx, dy) <= Radius;
    }
};

constexpr quint32 White = 0xFFFFFF;
constexpr quint32 Red = 0xC62828;

using TDrawing = std::vector<TShape>; // from back to front

enum class TPart { Folder, Sheet };

/// A rectangle of the program's icon, whose side is 100.
struct TIconShape {
    double X, Y, Width, Height, Radius;
    TPart Part;
    quint32 Colour;
};

constexpr TIconShape Icon[] = {
#include "agent/AgentIcon.inc"
};

/// `rise` is how far the sheet stands above its place.
TDrawing Drawing(double rise) {
    TDrawing drawing;
    for (const TIconShape& shape : Icon) {
        const double top = shape.Y / 100 - (shape.Part == TPart::Sheet ? rise : 0);
        drawing.push_back({shape.X / 100, top, (shape.X + shape.Width) / 100, top + shape.Height / 100,
                           shape.Radius / 100, shape.Colour});
    }
    return drawing;
}

/// The same with a badge that holds an exclamation mark, large enough for 16 pixels.
TDrawing DrawingWithBadge() {
    TDrawing drawing = Drawing(0);
    drawing.insert(drawing.end(), {{0.38, 0.38, 1.00, 1.00, 0.31, White},
                                   {0.43, 0.43, 0.95, 0.95, 0.26, Red},
                                   {0.63, 0.50, 0.75, 0.73, 0.03, White},
                                   {0.63, 0.78, 0.75, 0.89, 0.05, White}});
    return drawing;
}

/// The colour at a point, with full alpha; 0 where nothing is.
quint32 ColourAt(const TDrawing& shapes, double x, double y) {
    const auto top =
        std::find_if(shapes.rbegin(), shapes.rend(), [&](const TShape& shape) { return shape.Holds(x, y); });
    return top == shapes.rend() ? 0 : 0xFF000000 | top->Colour;
}

/// The mean of a pixel's sample points: transparent ones thin the colour out, they don't darken it.
ARGB Mean(const TDrawing& shapes, int column, int row, int size) {
    constexpr int Samples = 4;
    std::array<quint32, 4> sums{}; // blue, green, red, points that have a colour
    for (int i = 0; i < Samples * Samples; ++i) {
        const int across = i % Samples;
        const int down = i / Samples;
        const double x = (column + (across + 0.5) / Samples) / size;
        const double y = (row + (down + 0.5) / Samples) / size;
        const quint32 colour = ColourAt(shapes, x, y);
        if (colour == 0)
            continue;
        for (size_t part = 0; part < 3; ++part)
            sums[part] += colour >> (8 * part) & 0xFF;
        ++sums[3];
    }
    if (sums[3] == 0)
        return {};
    const quint32 alpha = sums[3] * 255 / (Samples * Samples);
    return alpha << 24 | sums[2] / sums[3] << 16 | sums[1] / sums[3] << 8 | sums[0] / sums[3];
}

TPicture Draw(int size, const TDrawing& shapes) {
    TPicture picture{size, size, {}};
    picture.Pixels.reserve(size_t(size) * size_t(size));
    for (int row = 0; row < size; ++row)
        for (int column = 0; column < size; ++column)
            picture.Pixels.push_back(Mean(shapes, column, row, size));
    return picture;
}

} // namespace

TPicture AgentPicture(int size) {
    return Draw(size, Drawing(0));
}

TPicture AttentionPicture(int size) {
    return Draw(size, DrawingWithBadge());
}

TPicture AgentFrame(int size, int frame) {
    constexpr double Highest = 0.6;
    return Draw(size, Drawing(Highest * (AgentFrames - 1 - frame) / (AgentFrames - 1)));
}
