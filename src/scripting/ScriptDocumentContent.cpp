#include "engine/Document.h"
#include "engine/EmbeddedFiles.h"
#include "scripting/ScriptDocument.h"

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
