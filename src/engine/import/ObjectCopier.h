#pragma once
// Copies objects from one PDF into another, or within one, for pages that become copies.
//
// Unlike the library's own copying it needs no stack for long chains of objects, maps references between
// pages that are copied together to the copies, and keeps the source of stream data alive.
#include "engine/file/Source.h"

#include <unordered_map>
#include <unordered_set>

class TObjectCopier {
public:
    /// `source` may be the document that `target` belongs to; what pages share is then shared with the
    /// copies, too.
    TObjectCopier(QPDF& target, TPDFSourcePtr source);

    [[nodiscard]] bool SameFile() const { return FSameFile; }
    [[nodiscard]] const TPDFSourcePtr& Source() const { return FSource; }

    /// References to page `from` become references to `to`. The first copy of a page counts, except for
    /// what belongs to another copy (MapLocal).
    void MapPage(QPDFObjGen from, const QPDFObjectHandle& to) { FPages.emplace(KeyOf(from), to); }
    /// References to `from` become references to `to` until ClearLocal.
    void MapLocal(QPDFObjGen from, const QPDFObjectHandle& to) { FLocal[KeyOf(from)] = to; }
    void ClearLocal() { FLocal.clear(); }

    /// The copy of an object of the source. References to pages that are not copied become null.
    [[nodiscard]] QPDFObjectHandle Copy(const QPDFObjectHandle& object);
    /// Copies what the copies made so far refer to.
    void Finish();
    /// The copy that an indirect object of the source has by now; null if it has none.
    [[nodiscard]] QPDFObjectHandle Find(const QPDFObjectHandle& object) const;

private:
    QPDFObjectHandle Reference(const QPDFObjectHandle& object);
    QPDFObjectHandle Value(QPDFObjectHandle object);
    void CopyStream(QPDFObjectHandle from, QPDFObjectHandle to);

    QPDF& FTarget;
    TPDFSourcePtr FSource;
    bool FSameFile;
    std::unordered_map<quint64, QPDFObjectHandle> FPages;
    std::unordered_map<quint64, QPDFObjectHandle> FLocal;
    std::unordered_map<quint64, QPDFObjectHandle> FShared;
    std::unordered_set<quint64> FSourcePages;
    std::vector<std::pair<QPDFObjectHandle, QPDFObjectHandle>> FWaiting; // of the source, its empty copy
};
