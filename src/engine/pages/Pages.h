#pragma once
// The pages of a document as its own list. The file's page tree is rebuilt from it once, at save.
#include "engine/pages/PageGeometry.h"

#include <memory>
#include <vector>

struct TPageObject;
struct TPlacedContent;
class TZQLayerCollection;
class TZQPDFDocument;
class TZQPDFXObjectGroup;

/// One page. Lives as long as it stands in its document's list. What is put on it is the matter of the layers
/// (engine/layers/LayeredPage.h), which make the pages.
class TZQPDFPage {
public:
    explicit TZQPDFPage(std::unique_ptr<TPageObject> object);
    virtual ~TZQPDFPage();
    TZQPDFPage(const TZQPDFPage&) = delete;

    /// Tells the page from every other, those that have gone included.
    [[nodiscard]] quint64 Id() const { return FId; }

    /// The size of the page's layer space in points; the displayed size of the page until set otherwise.
    [[nodiscard]] Single GetWidth() const;
    [[nodiscard]] Single GetHeight() const;
    void SetWidth(Single width) { FWidth = width; }
    void SetHeight(Single height) { FHeight = height; }

    /// Whether the page's layers are built.
    [[nodiscard]] bool getRendered() const { return FRendered; }
    void SetRendered(bool rendered) { FRendered = rendered; }

    /// The page lies otherwise from here on: its size and layers are worked out anew.
    void ResetLayout();

    /// The page's place and rotation, changes made since opening included.
    [[nodiscard]] const TPageGeometry& Geometry() const;

    /// What was put on the page since the document was opened.
    [[nodiscard]] virtual TZQLayerCollection& Layers() = 0;
    /// Puts a group of the document's cache on the page, where it is drawn as the page lies now.
    virtual void updateXObject(TZQPDFDocument& document, TZQPDFXObjectGroup& group) = 0;

    /// For what refers to a page that may be deleted meanwhile: expires with the page, owns nothing.
    [[nodiscard]] std::weak_ptr<TZQPDFPage> Handle();

    /// What callers recorded as changed: 4 for annotations, 19 for content.
    quint32 ChangedParts = 0;

    /// The engine's own view of the page.
    [[nodiscard]] TPageObject& Object() const { return *FObject; }
    /// Null while nothing was put on the page.
    [[nodiscard]] virtual TPlacedContent* Content() const = 0;

private:
    quint64 FId;
    std::unique_ptr<TPageObject> FObject;
    std::shared_ptr<TZQPDFPage> FHandle; // null until somebody asks
    Single FWidth = -1;                  // negative: not set
    Single FHeight = -1;
    bool FRendered = false;
};

/// Pages counted from 0.
class TZQPDFPages {
public:
    [[nodiscard]] int Count() const { return int(FItems.size()); }
    /// Raises EPDFError for an index outside 0 to Count() - 1.
    [[nodiscard]] TZQPDFPage& getItem(int index) const;

    // For the document:
    using TItems = std::vector<std::unique_ptr<TZQPDFPage>>;
    [[nodiscard]] TItems& Items() { return FItems; }
    [[nodiscard]] const TItems& Items() const { return FItems; }

private:
    TItems FItems;
};
