#pragma once
// Layers: the things that are put on a page. They are kept as they were described, and become PDF objects
// when the document is saved.
//
// Places and sizes are in layer space: points, origin at the top left corner of the page as displayed, y
// down. A layer lies where it was placed: it keeps the page's geometry of that moment, and what turns or
// crops the page afterwards changes the mapping for later layers only.
#include "base/Component.h"
#include "engine/pages/PageGeometry.h"
#include "engine/pdf/Types.h"

#include <vector>

class TZQLayerCollection;
class TZQPDFPage;
struct TDrawing;
struct TAnnotationDrawing;

class TZQCustomLayer : public TComponent {
    Q_OBJECT
    Q_PROPERTY(float X READ X WRITE SetX)
    Q_PROPERTY(float Y READ Y WRITE SetY)
    Q_PROPERTY(float Width READ Width WRITE SetWidth)
    Q_PROPERTY(float Height READ Height WRITE SetHeight)
public:
    /// The layer belongs to `collection` from here on; without one, to whoever made it.
    explicit TZQCustomLayer(TZQLayerCollection* collection);
    ~TZQCustomLayer() override;

    [[nodiscard]] Single X() const { return FX; }
    [[nodiscard]] Single Y() const { return FY; }
    void SetX(Single x) { MoveTo(x, FY); }
    void SetY(Single y) { MoveTo(FX, y); }
    /// Puts the top left corner there. This and what sets the size raise EPDFError for a number that no
    /// page can hold (engine/pdf/Numbers.h).
    virtual void MoveTo(Single x, Single y);
    void SetPosition(const TGPPointF& position) { MoveTo(position.X, position.Y); }
    /// Place and size at once.
    virtual void SetBounds(const TGPRectF& bounds);

    [[nodiscard]] virtual Single Width() const { return FWidth; }
    [[nodiscard]] virtual Single Height() const { return FHeight; }
    virtual void SetWidth(Single width);
    virtual void SetHeight(Single height);

    /// Null for a layer that stands for itself or in a group.
    [[nodiscard]] TZQLayerCollection* Collection() const { return FCollection; }
    /// The page's geometry when the layer was placed.
    [[nodiscard]] const TPageGeometry& Geometry() const { return FGeometry; }

    // For the engine's writer:
    /// Draws the layer as part of the page's content.
    virtual void Draw(TDrawing& /*to*/) {}
    /// Writes the layer as an annotation; false for one that is none.
    virtual bool WriteAnnotation(TAnnotationDrawing& /*to*/) { return false; }
    /// Frees what only drawing needed.
    virtual void DropLayout() {}

protected:
    /// What the layer shows has changed.
    virtual void Changed();

    Single FX = 0;
    Single FY = 0;
    Single FWidth = 0;
    Single FHeight = 0;

private:
    friend class TZQLayerCollection;
    TZQLayerCollection* FCollection;
    TPageGeometry FGeometry;
};

/// The unit in which a collection measures; 0 is the point, and there is no other.
enum class TZQUnitType : quint8 { Point };

/// The layers of a page, in the order in which they are drawn. It owns them.
class TZQLayerCollection {
public:
    explicit TZQLayerCollection(TZQPDFPage& page) : FPage(page) {}
    ~TZQLayerCollection();
    TZQLayerCollection(const TZQLayerCollection&) = delete;

    [[nodiscard]] TZQPDFPage& Page() const { return FPage; }
    [[nodiscard]] TZQUnitType Unit() const { return TZQUnitType::Point; }
    [[nodiscard]] int Count() const { return int(FItems.size()); }
    [[nodiscard]] TZQCustomLayer& GetItem(int index) const { return *FItems.at(size_t(index)); }

    // For the engine's writer:
    [[nodiscard]] const std::vector<TZQCustomLayer*>& Items() const { return FItems; }
    /// Whether a layer came or changed since the last Settle.
    [[nodiscard]] bool IsChanged() const { return FChanged; }
    void Settle() { FChanged = false; }
    /// The layers up to now are part of the file that the document is on: they are not drawn again, and
    /// changing them changes nothing.
    void Freeze();
    [[nodiscard]] int FirstLive() const { return FFrozen; }

private:
    friend class TZQCustomLayer;
    void Add(TZQCustomLayer& layer);
    void Remove(TZQCustomLayer& layer);

    TZQPDFPage& FPage;
    std::vector<TZQCustomLayer*> FItems;
    int FFrozen = 0; // so many from the first on
    bool FChanged = false;
};
