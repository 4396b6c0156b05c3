#pragma once
// A PDF document: opened, changed, saved. Changes are kept as small records of our own while a document is
// worked on; PDF objects are made from them when it is saved.
//
// One thread at a time may use a document. Its pages, page tree and attachments are those of the file it is
// on: references to them are good until another file is opened or the bulk is released. Everything raises
// EPDFError or EFileError with a text that names the file, page or object concerned.
#include "base/Component.h"
#include "engine/core/Security.h"
#include "engine/file/TestedFile.h"
#include "engine/file/Warnings.h"
#include "engine/outlines/Objects.h"
#include "engine/pages/PageTree.h"
#include "engine/pages/Pages.h"
#include "engine/pdf/Errors.h"
#include "engine/pdf/Types.h"

struct TDocumentCore;
class TOutputFile;
class TPartFile;
class TPDFEmbeddedFiles;
class TZQPDFEditor;
class TZQPDFXObjectGroup;
class TZQPDFXObjectsCache;

/// What holds for any document: its file, protection, information and view settings.
class TPDFDocument : public TComponent {
    Q_OBJECT
public:
    explicit TPDFDocument(TComponent* owner);
    ~TPDFDocument() override;

    // --- Tests on files, without a document ---

    /// Whether the file doesn't open without a password. Protection for which no password exists (by
    /// certificates) counts. Raises for a file that is no PDF or too damaged to be opened at all. A file that
    /// is open for reading already can be given as `descriptor`; its name then serves texts alone. A file
    /// that opens is left in `tested` for OpenFromFile.
    [[nodiscard]] static bool IsPasswordProtected(const string& fileName, int descriptor = NotOpen,
                                                  TTestedFile* tested = nullptr);
    static constexpr int NotOpen = -1;
    /// Whether `password` is one of the kind that `option` names; true for a file without protection.
    /// `tested` as above.
    [[nodiscard]] static bool IsPasswordOk(const string& fileName, const NarrowString& password,
                                           TPDFSecurityHandlerType& handlerType, TIsPasswordOkOption option,
                                           TTestedFile* tested = nullptr);

    // --- File ---

    /// Replaces this document by the file's. Always true; raises where it can't be opened, and this
    /// document stays as it was. Damage that readers repair is only told by Warnings(). `descriptor` as
    /// above. What a test left in `tested` isn't read again if it is the same file, unchanged.
    bool OpenFromFile(const string& fileName, const NarrowString& password, int descriptor = NotOpen,
                      TTestedFile tested = {});
    /// Writes the document to a file that the caller publishes.
    void WriteTo(TOutputFile& file);
    /// Writes the document and publishes it under that name in one step, replacing what is there, which may
    /// be the file it was opened from. `keepSource` leaves the document on the file it was opened from
    /// instead of going over to the written one; `takeName` makes the written file the document's file and
    /// clears the modified state. The document stays usable whatever the two say. Always true.
    bool SaveToPath(const string& fileName, bool keepSource, bool takeName);
    bool SaveCopyToFile(const string& fileName, bool keepSource, bool takeName);
    /// Writes the document to `fileName` or, where something has that name, to the free one that
    /// UniqueFileName gives, and stays on its file. Nothing is ever replaced.
    void SaveToFreeName(const string& fileName);
    /// Path of the document's file; empty for a new document.
    [[nodiscard]] const string& FileName() const;
    /// What was wrong with the file and could be lived with, what was refused, and what a save invalidates.
    [[nodiscard]] TPDFWarnings Warnings() const;
    /// Gives back the file and everything read from it. A document so emptied has no pages, takes a few
    /// hundred bytes and can only be freed or used to open another file.
    void ReleaseBulk();

    [[nodiscard]] bool GetModified() const;
    /// Records what the caller says, also between LockChanges and UnlockChanges.
    void SetModified(bool modified);
    /// Changes made between the two don't set the modified state. Calls nest; a document that stays locked
    /// can be saved all the same.
    void LockChanges();
    void UnlockChanges();

    // --- Information and view ---

    /// Sets an entry of the document information, as "Title". `keepExisting` leaves a value alone that is
    /// already there. An empty value removes the entry.
    void SetInfoString(const NarrowString& key, const string& value, bool keepExisting);
    [[nodiscard]] string GetInfoString(const NarrowString& key) const;
    /// The XMP packet; empty where there is none. Setting an empty packet removes it.
    [[nodiscard]] NarrowString GetXMLMetaData() const;
    void SetXMLMetaData(const NarrowString& xmp);
    /// What the file asks of viewers. The setters are always true.
    [[nodiscard]] TPDFPageMode GetPageMode() const;
    bool SetPageMode(TPDFPageMode mode);
    [[nodiscard]] TPDFPageLayout GetPageLayout() const;
    bool SetPageLayout(TPDFPageLayout layout);
    [[nodiscard]] TPDFEmbeddedFiles& GetEmbeddedFiles();
    /// Signature fields that hold a signature.
    [[nodiscard]] int GetSignaturesCount() const;

    // --- Protection ---

    [[nodiscard]] bool getIsEncrypted() const;
    /// What the password that the document was opened with allows; the owner password allows everything.
    /// Asked before an operation: a no is recorded as a refusal (Warnings).
    [[nodiscard]] bool GetCanModify() const;
    [[nodiscard]] bool GetCanModifyAnnots() const;
    [[nodiscard]] bool GetCanModifyPages() const;
    [[nodiscard]] bool GetCanModifyOutlines() const;
    [[nodiscard]] bool GetCanChangeDocument() const;

    /// The installed handler; null for a document without protection.
    [[nodiscard]] TPDFSecurityHandler* SecurityHandler() const;
    /// Takes `handler`, which may be null, and frees the one before.
    void SetSecurityHandler(TPDFSecurityHandler* handler);
    void SetUserPassword(const NarrowString& password);
    void SetOwnerPassword(const NarrowString& password);
    [[nodiscard]] const NarrowString& UserPassword() const;
    [[nodiscard]] const NarrowString& OwnerPassword() const;
    /// From the next save on the document is protected as the installed handler says. Raises if there is
    /// none that works with passwords.
    void Encrypt();
    /// From the next save on the document is without protection. False, and nothing happens, for a document
    /// that wasn't opened with its owner password.
    bool Decrypt();

protected:
    [[nodiscard]] TDocumentCore& Core() const { return *FCore; }
    /// A change made by one of our own operations.
    void Changed();

private:
    /// With the mode of the document's own file.
    void WritePart(TPartFile& file);

    std::unique_ptr<TDocumentCore> FCore;
};

/// A document whose pages can be worked on. New ones have one blank A4 page.
class TZQPDFDocument : public TPDFDocument {
    Q_OBJECT
public:
    explicit TZQPDFDocument(TComponent* owner);
    ~TZQPDFDocument() override;

    [[nodiscard]] int GetPageCount() const;
    [[nodiscard]] TZQPDFPages& Pages() const;
    [[nodiscard]] TPDFPageTree& PageTree() const;
    /// The attached editor control; null in batch use.
    [[nodiscard]] TZQPDFEditor* Editor() const { return FEditor; }

    // --- Pages. Ranges are those of engine/pages/PageRange.h; numbers count from 1 where not told ---

    /// Inserts `count` blank pages before page `index` if `before`, else behind it; the place is clamped to
    /// the document. Sizes are in points.
    void InsertPages(int index, int count, Single width, Single height, bool before);
    /// `index` counts from 0. The last page can't be deleted.
    void DeletePage(int index);
    /// Deletes each page of the range; an empty range deletes none. Gives the page to go to.
    int DeletePageRange(const string& range);
    /// Takes the margins off the pages as displayed. Raises, and changes no page, if nothing of one is left.
    void CropPages(const string& range, TPDFMargins& margins);
    /// Turns each page of the range clockwise by a multiple of 90 degrees, added to its own rotation.
    void RotatePages(const string& range, int angle);
    /// Copies pages of `source`, which may be this document and may go afterwards, before page `index`,
    /// clamped; -1 appends. Gives the number of pages copied.
    int ImportPagesFrom(TZQPDFDocument& source, const NarrowString& range, int index);
    /// The same from a file. `after` is told by callers that made `index` from it, and changes nothing.
    /// True if any page was copied.
    bool ImportPagesFromDocument(const string& fileName, const string& password, const string& range,
                                 int index, bool after);

    // --- Outline (engine/outlines). Null means no such item, also for an item of another document ---

    [[nodiscard]] TPDFIndirect* FirstOutline();
    [[nodiscard]] TPDFIndirect* FirstChildOutline(const TPDFIndirect* item);
    [[nodiscard]] TPDFIndirect* NextOutline(const TPDFIndirect* item);
    [[nodiscard]] TPDFIndirect* PrevOutline(const TPDFIndirect* item);
    /// Items of all levels.
    [[nodiscard]] int OutlineCount();
    /// Adds the last item below `parent`, null for the top level, that leads to a page. Pages count from 1;
    /// the item follows its page wherever that goes before the save. Raises if there is no such page or
    /// parent.
    TPDFIndirect* NewOutline(TPDFIndirect* parent, const NarrowString& text, int page, TPDFLinkDestKind dest);
    /// Whether the reference is one of this document's; it need not be valid for that.
    [[nodiscard]] bool OwnsReference(const TPDFIndirect* reference) const;
    [[nodiscard]] TPDFObjectsList& ObjectsList() { return FObjectsList; }

    // --- Layers ---

    /// Makes the zero-based page ready for layers, which are placed at 72 dots per inch: points. Raises if
    /// there is no such page.
    void RenderToLayers(int page, int dpi);
    /// Records that the zero-based page, and those of the list, were the last used.
    void updatePageMru(int page, const QList<int>& pages);
    /// Puts a group, which must live as long as the document, on each page of its range. Raises EPDFError
    /// for a text that is no range.
    void updateWatermark(TZQPDFXObjectGroup& group);
    /// The form objects that go on pages as groups.
    [[nodiscard]] TZQPDFXObjectsCache& XObjects();

private:
    void WritePending(const NarrowString& range);

    friend class TZQPDFEditor; // which attaches itself
    TZQPDFEditor* FEditor = nullptr;
    TPDFObjectsList FObjectsList;
};
