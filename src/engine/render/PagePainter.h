#pragma once
// What paints pages. It lives in a library of its own that is loaded when the first page is painted: most
// runs never paint one, and what stands behind it would cost each of them its start and memory.
#include "base/Text.h"

#include <string>

struct TPaintJob {
    int Width = 0; ///< in pixels
    int Height = 0;
    int Dpi = 0;                  ///< recorded in the picture
    const char* Format = nullptr; ///< "png", "jpeg", "tiff" or "bmp"
};

class TPagePainter {
public:
    virtual ~TPagePainter() = default;
    /// Paints the first page of a PDF to fill the picture. Gives what went wrong; empty if nothing did. No
    /// exception crosses the border of the library. Any thread may call it, without a display.
    [[nodiscard]] virtual string Paint(const std::string& pdf, const TPaintJob& job,
                                       std::string& picture) noexcept = 0;
};

/// The painter, loaded at first use. Raises EPDFError where it can't be.
[[nodiscard]] TPagePainter& PagePainter();
