#include "bates/BatesDictionary.h"
#include "engine/core/EmbeddedFiles.h"
#include "engine/document/Document.h"
#include "engine/pages/Pages.h"
#include "engine/pdf/Numbers.h"
#include "scripting/ScriptDocument.h"

namespace {

// What callers record of a page (engine/pages/Pages.h).
constexpr quint32 ContentChanged = 19;

/// Opaque, from 0x00BBGGRR.
ARGB OpaqueOf(TColor color) {
    return TGPColor::ColorRefToARGB(color, 255);
}

} // namespace

TZQLayerCollection& TJSPDFDocument::LayersToFill() {
    RenderPageSafe(-1);
    return GetCurrentLayers();
}

TZQLayerCollection& TJSPDFDocument::GetCurrentLayers() const {
    return Document().Pages().getItem(GetCurrentPage() - 1).Layers();
}

void TJSPDFDocument::MarkPageChanged(quint32 Kind) {
    Document().Pages().getItem(GetCurrentPage() - 1).ChangedParts |= Kind;
    Document().SetModified(true);
}

TZQPDFText* TJSPDFDocument::AddText(const string& Text, const TFontName& FontName, float FontSize,
                                    TColor FillColor, float X, float Y) {
    if (!Document().GetCanModify())
        return nullptr;
    RequireLength("X", Double(X));
    RequireLength("Y", Double(Y));
    RequireLength("FontSize", Double(FontSize));
    auto* text = new TZQPDFText(&LayersToFill());
    text->SetPosition(TGPPointF::Create(X, Y));
    text->SetFontName(Narrow(FontName.isEmpty() ? TFontName(QStringLiteral("Arial")) : FontName));
    text->SetFontSize(FontSize == 0 ? 12 : FontSize);
    text->SetFillColor(OpaqueOf(FillColor));
    text->SetText(Text);
    MarkPageChanged(ContentChanged);
    return text;
}

TZQPDFImage* TJSPDFDocument::AddImage(const TFileName& fileName, float X, float Y) {
    if (!Document().GetCanModify())
        return nullptr;
    RequireLength("X", Double(X));
    RequireLength("Y", Double(Y));
    auto* image = new TZQPDFImage(&LayersToFill());
    if (!fileName.isEmpty())
        image->LoadFromFile(fileName);
    image->SetPosition(TGPPointF::Create(X, Y));
    MarkPageChanged(ContentChanged);
    return image;
}

bool TJSPDFDocument::AddBatesNumbering(const TZQPDFBatesSetting& bates, const string& pageRange) {
    if (!Document().GetCanModify())
        return false;
    TZQPDFBatesDictionary store;
    store.CurrScheme = bates;
    store.ApplySchemeToDocument(Document(), pageRange);
    return false;
}

bool TJSPDFDocument::AddFileAttachment(const TFileName& fileName) {
    TPDFEmbeddedFiles& files = Document().GetEmbeddedFiles();
    if (files.Exists(fileName))
        files.Delete(fileName);
    files.Add(fileName, QString(), QString(), QString());
    files.Update();
    return false;
}

bool TJSPDFDocument::AddDocumentDescription(const TPDFDocumentDescription& Description) {
    struct TEntry {
        const char* Key;
        const string& Value;
        bool AsIs;
    };
    for (const TEntry& entry : {TEntry{"Title", Description.Title, Description.TitleAsIs},
                                TEntry{"Author", Description.Author, Description.AuthorAsIs},
                                TEntry{"Subject", Description.Subject, Description.SubjectAsIs},
                                TEntry{"Keywords", Description.Keywords, Description.KeywordsAsIs}})
        if (!entry.AsIs)
            Document().SetInfoString(entry.Key, entry.Value, /*keepExisting=*/false);
    return false;
}
