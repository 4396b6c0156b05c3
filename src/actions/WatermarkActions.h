#pragma once
// Actions that put a watermark on the document. Neither does, in lists as they are; a script can.
#include "actions/Action.h"
#include "engine/watermark/WatermarkSettings.h"

/// Leaves the document as it is, on purpose: so does the document's method. It is given `Name`, and
/// `FileName` is stored and never used.
class TPDFActionAddWatermarkDefined : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddWatermarkDefined() = default;
    PUBLISHED(string, FileName, FfileName);
};

/// Always raises: the document's method asks for "w", and the member is called `Watermark`. That is the
/// format of existing lists.
class TPDFActionAddWatermark : public TPDFAction {
    Q_OBJECT
    Q_PROPERTY(TPDFWatermarkSettings* Watermark READ Watermark WRITE SetWatermark)
public:
    Q_INVOKABLE TPDFActionAddWatermark() = default;

    /// Owned by the action.
    [[nodiscard]] TPDFWatermarkSettings* Watermark() { return &Fw; }
    /// Copies the values; the caller keeps what it passes.
    void SetWatermark(TPDFWatermarkSettings* settings) { Fw.Assign(settings); }

private:
    TPDFWatermarkSettings Fw;
};
