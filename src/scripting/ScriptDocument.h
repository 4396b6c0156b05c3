#pragma once
// TJSPDFDocument: the one view of a PDF document that actions and scripts see. Actions find a method by
// its name and fill its parameters by theirs, and scripts call the same methods, so names of methods and
// parameters are a contract. Pages count from 1 here, from 0 in the engine's list.
//
// Methods answer false or null where the document's permissions refuse the operation, without a message;
// what the engine raises passes. An object belongs to the thread that runs the actions or the script.
#include "base/Reflection.h"
#include "bates/BatesSetting.h"
#include "engine/annotations/FileAttachmentAnnotation.h"
#include "engine/annotations/FreeTextAnnotation.h"
#include "engine/annotations/LinkAnnotation.h"
#include "engine/annotations/StampAnnotation.h"
#include "engine/annotations/TextAnnotation.h"
#include "engine/core/Permissions.h"
#include "engine/layers/LayerImage.h"
#include "engine/layers/LayerText.h"
#include "engine/outlines/Objects.h"
#include "engine/pdf/Types.h"
#include "engine/watermark/WatermarkSettings.h"
#include "scripting/DocumentDescription.h"
#include "scripting/PageInfo.h"

#include <QPointer>

class TZQLayerCollection;
class TZQPDFDocument;

class TJSPDFDocument : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("engine/core/Permissions.h") // the run-time table needs to know the whole class
    Q_CLASSINFO("ScriptName", "TPDFDocument")
    Q_CLASSINFO("ScriptOwnsResults", "true") // documents that its methods return
    Q_CLASSINFO("ScriptBytes", "262144")     // what the collector of scripts counts for one
public:
    /// Owns a new document of one blank page.
    Q_INVOKABLE TJSPDFDocument();
    /// Frees the document if it is owned.
    ~TJSPDFDocument() override;

    /// The engine document. Raises Exception where its owner has freed it.
    [[nodiscard]] TZQPDFDocument& Document() const;
    /// Takes another document on loan; an owned one is freed. The path of the last load or save belonged to
    /// that one and goes with it; the error code stays as it is.
    void SetDocument(TZQPDFDocument* Value);

    // Life cycle (ScriptDocument.cpp)
    /// Asks for the owner password of a protected file unless `Password` is it; false where that is
    /// cancelled or the file doesn't exist. Raises where the file can't be opened.
    Q_INVOKABLE bool Load(TConst<string> fileName, const string& Password);
    /// To the path of the last load or save; without one nothing is written, and the answer is still true.
    Q_INVOKABLE bool Save();
    Q_INVOKABLE bool SaveAs(const string& fileName);
    /// 0, or 2 once a file to load did not exist. Nothing resets it.
    Q_INVOKABLE int GetLastError();

    // Security (ScriptDocumentSecurity.cpp)
    /// These three ask about the file named, not about the open document.
    Q_INVOKABLE bool IsPasswordOK(const string& fileName, const string& Password);
    Q_INVOKABLE bool IsOpenPasswordOK(const string& fileName, const string& Password);
    Q_INVOKABLE bool IsPermissionPasswordOK(const string& fileName, const string& Password);
    /// From the next save on; refused for a document that is encrypted or carries a signature. `Algo` is one
    /// of ENC_ALGORITHM_40_RC4, ..._128_RC4, ..._128_AES and ..._256_AES, 0 to 3; with any other, saving
    /// raises.
    Q_INVOKABLE bool Encrypt(const string& OwnerPassword, const string& OpenPassword, int Algo,
                             TPDFDocPermissions* Perms);
    /// Only a document that was opened with its owner password and carries no signature.
    Q_INVOKABLE bool Decrypt();
    /// Signature fields that hold a signature. Whatever is saved of such a document, no signature covers it.
    Q_INVOKABLE int GetSignaturesCount();

    // Content (ScriptDocumentContent.cpp), on the current page. What is added stays the page's; the caller
    // gets a reference. Places are in layer space (engine/layers/Layer.h).
    /// An empty font name is Arial, a size of exactly 0 is 12 points.
    Q_INVOKABLE TZQPDFText* AddText(const string& Text, const TFontName& FontName, float FontSize,
                                    TColor FillColor, float X, float Y);
    /// Without a file name the image shows nothing, until it loads one.
    Q_INVOKABLE TZQPDFImage* AddImage(const TFileName& fileName, float X, float Y);
    /// Stamps the pages of a range. The numbers of the scheme don't count here: number macros stay as they
    /// stand. Always false.
    Q_INVOKABLE bool AddBatesNumbering(const TZQPDFBatesSetting& bates, const string& pageRange);
    /// Annotations (ScriptDocumentAnnotations.cpp), except for stamps by name, which add nothing.
    Q_INVOKABLE TZQPDFTextAnnotation* AddNoteAnnotation(float X, float Y, TColor Color);
    Q_INVOKABLE TZQPDFStampAnnotation* AddStampAnnotation(double X, double Y, TConst<string> Text,
                                                          TConst<string> Subject, TColor baseColor,
                                                          TColor BgGradientStartColor,
                                                          TColor BgGradientEndColor);
    Q_INVOKABLE TZQPDFStampAnnotation* AddStampAnnotationDefined(const string& name);
    Q_INVOKABLE TZQPDFFileAttachementAnnotation* AddFileAttachAnnotation(double X, double Y,
                                                                         TConst<TFileName> fileName);
    Q_INVOKABLE TZQPDFLinkAnnotation* AddLinkAnnotation(float X, float Y, float Width, float Height,
                                                        int pageNum);
    Q_INVOKABLE TZQPDFLinkAnnotation* AddWebAnnotation(float X, float Y, float Width, float Height,
                                                       const string& uri);
    Q_INVOKABLE TZQPDFFreeTextAnnotation* AddFreeTextAnnotation(const string& Text, float X, float Y,
                                                                float Width, float Height);
    /// Watermarks (ScriptDocumentWatermark.cpp); by name, always false, and nothing is added.
    Q_INVOKABLE bool AddWatermark(TPDFWatermarkSettings* w);
    Q_INVOKABLE bool AddWatermarkDefined(const string& name);
    /// An attachment of the same name is replaced.
    Q_INVOKABLE bool AddFileAttachment(const TFileName& fileName);
    Q_INVOKABLE bool AddDocumentDescription(const TPDFDocumentDescription& Description);

    // Pages (ScriptDocumentPages.cpp). A page range is the engine's (engine/pages/PageRange.h).
    Q_INVOKABLE bool InsertPages(int Index, int Count, float AWidth, float AHeight, bool BeforeCurrentPage);
    /// Deletes the pages `Index` to `Index + Count`: one more than the count says, on purpose, since
    /// existing lists count with it.
    Q_INVOKABLE bool DeletePages(int Index, int Count);
    Q_INVOKABLE bool DeletePagesEx(const string& pageRange);
    /// A new document with copies of the pages, saved under `fileName` unless that is empty. The caller owns
    /// it; saving never gives it a path of its own. Raises if the range selects no page.
    Q_INVOKABLE TJSPDFDocument* ExtractPages(const string& pageRange, const string& fileName,
                                             bool OverwriteExisting);
    Q_INVOKABLE bool CropPages(const string& pageRange, double top, double left, double right, double bottom);
    Q_INVOKABLE bool ImportPages(const TFileName& fileName, const string& pageRange, bool insertAfter,
                                 TZQPDFPagePosition pagePosition);
    /// False if nothing was imported.
    Q_INVOKABLE bool ImportPagesFromDocument(TJSPDFDocument* Doc, const string& pageRange, bool insertAfter,
                                             TZQPDFPagePosition pagePosition);
    Q_INVOKABLE bool RotatePages(const string& pageRange, int Angle);
    /// All five answer true on every path; a page that doesn't exist leaves the current one.
    Q_INVOKABLE bool GotoPage(int pageNumber);
    Q_INVOKABLE bool GotoNextPage();
    Q_INVOKABLE bool GotoPreviousPage();
    Q_INVOKABLE bool GotoFirstPage();
    Q_INVOKABLE bool GotoLastPage();

    // View and metadata (ScriptDocumentView.cpp)
    Q_INVOKABLE TPDFPageInfo GetPageInfo();
    Q_INVOKABLE bool SetPageMode(TPDFPageMode NewMode);
    Q_INVOKABLE TPDFPageMode GetPageMode();
    Q_INVOKABLE bool SetPageLayout(TPDFPageLayout NewLayout);
    Q_INVOKABLE TPDFPageLayout GetPageLayout();
    /// The XMP packet, passed through unparsed.
    Q_INVOKABLE void SetXMLMetaData(TConst<NarrowString> XMP);
    Q_INVOKABLE NarrowString GetXMLMetaData();
    /// The current page as a picture, changes that aren't saved included (engine/render/PageBitmap.h).
    Q_INVOKABLE void SaveGraphicPageToBitmap(const NarrowString& fileName, int DPI);

    // Outline (ScriptDocumentOutlines.cpp). Items belong to the document; null means none.
    /// Adds a last item, below `Parent` or, with null, on the top level. Always null, on purpose: scripts
    /// find the item by walking.
    Q_INVOKABLE TPDFIndirect* NewOutline(TPDFIndirect* Parent, const string& Text, int pageNumber,
                                         TPDFLinkDestKind destination);
    Q_INVOKABLE TPDFIndirect* GetFirstOutline();
    Q_INVOKABLE TPDFIndirect* GetFirstChildOutline(TPDFIndirect* Outline);
    Q_INVOKABLE TPDFIndirect* GetNextOutline(TPDFIndirect* Outline);
    Q_INVOKABLE TPDFIndirect* GetPrevOutline(TPDFIndirect* Outline);
    /// Always false, also where it sets the colour; doesn't mark the document as modified.
    Q_INVOKABLE bool SetOutlineColor(TPDFIndirect* Outline, TColor Color);
    /// Items of all levels.
    Q_INVOKABLE int GetOutlineCount();

private:
    enum class Ownership { Owned, Borrowed };

    [[nodiscard]] int GetCurrentPage() const;
    [[nodiscard]] int GetPagesCount() const;
    void SetCurrentPage(int Page);
    void RenderPageSafe(int Page);
    void RenderPage(int Page);
    [[nodiscard]] TZQLayerCollection& GetCurrentLayers() const;
    /// Makes the current page's layers present and gives them.
    TZQLayerCollection& LayersToFill();
    void MarkPageChanged(quint32 Kind);
    [[nodiscard]] int InsertionIndex(bool insertAfter, TZQPDFPagePosition pagePosition) const;

    int FLastError = 0;
    Ownership FDocOwner = Ownership::Owned;
    QPointer<TZQPDFDocument> FDocument;
    string FFilename;
};
