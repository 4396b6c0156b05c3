#pragma once
#include "engine/layers/LayerText.h"

/// A text of a Bates stamp. It takes its size from the boxes of its characters alone.
class TZQPDFBatesText : public TZQPDFText {
    Q_OBJECT
public:
    explicit TZQPDFBatesText(TZQLayerCollection* collection) : TZQPDFText(collection) {}

protected:
    /// As wide as its widest line up to the line's last character, and no less high than its lines
    /// together.
    void RecalcTextBounds() override;
};
