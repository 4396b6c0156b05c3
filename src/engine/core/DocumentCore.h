#pragma once
// What a document consists of behind its interface: its source, its page list and the changes that stand
// against the source.
#include "engine/core/EmbeddedFiles.h"
#include "engine/core/Security.h"
#include "engine/layers/Drawing.h"
#include "engine/layers/XObjectGroup.h"
#include "engine/outlines/OutlineTree.h"
#include "engine/pages/PageObject.h"
#include "engine/pages/PageTree.h"
#include "engine/pages/Pages.h"
#include "engine/pdf/AttachedFile.h"
#include "engine/pdf/Types.h"

#include <map>

/// Changes to the document as a whole that its source doesn't have yet.
struct TDocumentChanges {
    std::map<NarrowString, string> Info; ///< an empty value removes the entry
    std::optional<NarrowString> Xmp;     ///< empty removes the packet
    std::optional<TPDFPageMode> PageMode;
    std::optional<TPDFPageLayout> PageLayout;
    /// Files to attach, in the order in which that was asked; one without contents takes out what has its
    /// name.
    std::vector<TAttachedFile> Attachments;
};

enum class TProtection : quint8 { AsOpened, Encrypt, Remove };

struct TDocumentCore {
    TPDFSourcePtr Source; ///< null until a new document is first saved
    /// What the forms on pages of this source share; null until there is one.
    std::unique_ptr<TDocumentDrawing> Drawing;
    TZQPDFXObjectsCache XObjects;
    TZQPDFPages Pages;
    TPDFPageTree PageTree{Pages};
    /// Pages came, went or moved: the page tree of the source is out of date.
    bool StructureChanged = false;
    /// Pages of the source that are in the list no more.
    std::vector<QPDFObjectHandle> DeletedPages;
    int LastBatch = 0;
    int OpenedImports = 0;               ///< files that pages were imported from and that are held open
    std::shared_ptr<TSourceStore> Store; ///< of the others; null while there are none
    TDocumentChanges Changes;
    std::unique_ptr<TPDFEmbeddedFiles> EmbeddedFiles;
    std::unique_ptr<TOutlineTree> Outlines; ///< null until somebody asks for the outline

    TProtection Protection = TProtection::AsOpened;
    std::unique_ptr<TPDFSecurityHandler> Handler;
    NarrowString UserPassword;
    NarrowString OwnerPassword;

    string FileName;
    bool Modified = false;
    int Locks = 0;
    int LastUsedPage = -1;
    TPDFWarnings Warnings;
    bool SignatureBroken = false; ///< a signed document was written anew
    int MinorVersion = 0;         ///< of PDF 1, that what was written so far needs

    void RequireVersion(int minor) { MinorVersion = std::max(MinorVersion, minor); }

    /// The catalog; a null object while there is no source.
    [[nodiscard]] QPDFObjectHandle Root() const {
        return Source ? Source->Pdf->getRoot() : QPDFObjectHandle::newNull();
    }
};
