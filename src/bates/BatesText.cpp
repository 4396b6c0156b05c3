#include "bates/BatesText.h"

#include "engine/layers/TextSource.h"

#include <algorithm>

void TZQPDFBatesText::RecalcTextBounds() {
    const TZQUnitType unit = Collection() != nullptr ? Collection()->Unit() : TZQUnitType::Point;
    Double width = 0;
    Double height = 0;
    Double lines = 0;
    for (int line = 0; line < LineCount(); ++line) {
        const TCharsInfoList& chars = Source().GetCharsInfo(line);
        const int last = chars.Count() - 2; // behind it stands the line's end, which is left out
        for (int c = 0; c <= last; ++c) {
            const TCharInfo& box = chars.GetItem(c);
            if (c == last)
                width = std::max(width, Double(box.x) + Double(box.width));
            width = std::max(width, Double(box.x));
            height = std::max(height, Double(box.y) + Double(box.height));
        }
        lines += Double(Source().LineHeight(line));
    }
    FMetricsPending = false;
    FWidth = ConvertSpaceCoord(TZQUnitType::Point, unit, width);
    FHeight = ConvertSpaceCoord(TZQUnitType::Point, unit, std::max(height, lines));
}
