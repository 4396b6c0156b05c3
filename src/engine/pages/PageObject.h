#pragma once
// The engine's own view of a page: where it comes from and what was changed since.
#include "engine/file/Source.h"
#include "engine/pages/PageGeometry.h"

enum class TPageOrigin : quint8 {
    Own,   ///< a page object of the document's file
    Copy,  ///< to be copied at save: imported, or listed more than once in the file
    Blank, ///< to be made at save
};

struct TPageObject {
    TPageOrigin Origin = TPageOrigin::Blank;

    /// The page's dictionary; of a copy, a snapshot of the copied one. Not initialised for a blank page.
    QPDFObjectHandle Dict;
    std::shared_ptr<const TInherited> Inherited;
    /// Of an own page, its place in the file, for page labels; -1 if it is new.
    int FileIndex = -1;

    /// Of a copy: where it is copied from, the page object there, and which pages were imported with it.
    TPDFSourcePtr Source;
    QPDFObjGen CopiedFrom;
    int Batch = 0;

    /// Changes that are not in Dict yet.
    std::optional<int> NewRotation;
    std::optional<TPageBox> NewCrop;

    TPageBox BlankBox; ///< of a blank page
    mutable std::optional<TPageGeometry> Geometry;

    [[nodiscard]] int Rotation() const;
    [[nodiscard]] QPDFObjectHandle Attribute(const char* key) const;
};

/// A page of the document's own file, as the walk found it.
[[nodiscard]] std::unique_ptr<TPageObject> OwnPage(const TPDFSourcePtr& source, size_t index);
/// A copy of a page of `source` to be made, with the changes that stand against it there.
[[nodiscard]] std::unique_ptr<TPageObject> CopyOf(const TPageObject& page, const TPDFSourcePtr& source,
                                                  int batch);
[[nodiscard]] std::unique_ptr<TPageObject> BlankPage(Double width, Double height);
