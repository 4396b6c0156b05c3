#pragma once
// A layer that shows text: one font, fill and stroke, one or more lines from the top down.
#include "engine/layers/Layer.h"

#include <memory>

class TZQTextEditSource;

class TZQLayerText : public TZQCustomLayer {
    Q_OBJECT
    Q_PROPERTY(string Text READ Text WRITE SetText)
    Q_PROPERTY(TFontName FontName READ FontName WRITE SetFont)
    Q_PROPERTY(float FontSize READ FontSize WRITE SetFontSize)
    Q_PROPERTY(int FontStyle READ FontStyle WRITE SetFontStyle)
    Q_PROPERTY(ARGB FillColor READ FillColor WRITE SetFillColor)
    Q_PROPERTY(ARGB StrokeColor READ StrokeColor WRITE SetStrokeColor)
    Q_PROPERTY(float StrokePenWidth READ StrokePenWidth WRITE SetStrokePenWidth)
public:
    explicit TZQLayerText(TZQLayerCollection* collection);
    ~TZQLayerText() override;

    /// Font family; the nearest that the system has is taken.
    void SetFontName(const NarrowString& name) { SetFont(Widen(name)); }
    void SetFont(const TFontName& name);
    [[nodiscard]] TFontName FontName() const;
    /// Points.
    void SetFontSize(Single size);
    [[nodiscard]] Single FontSize() const;
    /// 0 normal, 1 bold, 2 italic, 3 both.
    void SetFontStyle(int style);
    [[nodiscard]] int FontStyle() const;
    /// A colour whose alpha is 0 draws nothing: text is filled, stroked or both.
    void SetFillColor(ARGB color);
    [[nodiscard]] ARGB FillColor() const { return FFillColor; }
    void SetStrokeColor(ARGB color);
    [[nodiscard]] ARGB StrokeColor() const { return FStrokeColor; }
    /// Width of the stroke in points.
    void SetStrokePenWidth(Single width);
    [[nodiscard]] Single StrokePenWidth() const { return FStrokePenWidth; }
    void SetText(const string& text);
    [[nodiscard]] string Text() const;
    [[nodiscard]] int LineCount() const;

    /// Between the two, changes don't measure the text again; CancelUpdate leaves that to the next change.
    void BeginUpdate() { ++FUpdates; }
    void EndUpdate();
    void CancelUpdate();

    /// The size of the text as it is set.
    [[nodiscard]] Single Width() const override;
    [[nodiscard]] Single Height() const override;

    void Draw(TDrawing& to) override;
    void DropLayout() override;

protected:
    /// Sets FWidth and FHeight from the text and its font, and clears FMetricsPending. Called when the size
    /// is asked for after a change.
    virtual void RecalcTextBounds();

    [[nodiscard]] const TZQTextEditSource& Source() const { return *FSource; }
    bool FMetricsPending = true;

private:
    void TextChanged();
    void Measure() const;

    std::unique_ptr<TZQTextEditSource> FSource;
    ARGB FFillColor = 0xFF000000;
    ARGB FStrokeColor = 0;
    Single FStrokePenWidth = 1;
    int FUpdates = 0;
};

/// Converts a length between units; there is one unit.
[[nodiscard]] inline Single ConvertSpaceCoord(TZQUnitType /*from*/, TZQUnitType /*to*/, Double length) {
    return Single(length);
}

/// Text on a page.
class TZQPDFText : public TZQLayerText {
    Q_OBJECT
public:
    explicit TZQPDFText(TZQLayerCollection* collection) : TZQLayerText(collection) {}
};
