#pragma once
// The text of a free text annotation, set in lines within its box.
#include "engine/layers/LayerText.h"

#include <functional>

struct TShapedLine;

class TZQLayerRichText : public TZQLayerText {
    Q_OBJECT
public:
    /// `changed` is called when the text or its looks change.
    explicit TZQLayerRichText(std::function<void()> changed);

    /// How high the text is in lines of that width.
    [[nodiscard]] Double HeightWithin(Double width) const;
    /// Draws the lines from the top of a box down, as far as they can be seen in it.
    void DrawWithin(TDrawing& to, const TGPRectF& box) const;
    /// The style as a default appearance and as a style string (ISO 32000-1, table 174).
    [[nodiscard]] std::string DefaultAppearance() const;
    [[nodiscard]] string StyleString() const;

protected:
    void Changed() override;

private:
    std::function<void()> FOnChanged;
};
