#include "scripting/ScriptDocument.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "engine/document/Document.h"
#include "scripting/AskForPassword.h"

TJSPDFDocument::TJSPDFDocument() : FDocument(new TZQPDFDocument(nullptr)) {}

TJSPDFDocument::~TJSPDFDocument() {
    if (FDocOwner == Ownership::Owned)
        delete FDocument.data();
}

TZQPDFDocument& TJSPDFDocument::Document() const {
    if (FDocument == nullptr)
        throw Exception(QStringLiteral("The document is no longer open."));
    return *FDocument;
}

void TJSPDFDocument::SetDocument(TZQPDFDocument* Value) {
    if (Value == FDocument)
        return;
    if (FDocOwner == Ownership::Owned)
        delete FDocument.data();
    FDocOwner = Ownership::Borrowed;
    FDocument = Value;
    FFilename.clear(); // or Save would write this document over another's file
}

bool TJSPDFDocument::Load(const string& fileName, const string& Password) {
    constexpr int FileNotFound = 2;
    if (!FileExists(fileName)) {
        FLastError = FileNotFound;
        return false;
    }
    string password = Password;
    TTestedFile tested;
    if (!AskForPassword(fileName, TIsPasswordOkOption::poPermission, password, &tested))
        return false;
    const bool opened =
        Document().OpenFromFile(fileName, Narrow(password), TZQPDFDocument::NotOpen, std::move(tested));
    FFilename = fileName;
    SetCurrentPage(1);
    return opened;
}

bool TJSPDFDocument::Save() {
    if (!FFilename.isEmpty())
        Document().SaveToPath(FFilename, /*keepSource=*/false, /*takeName=*/true);
    return true;
}

bool TJSPDFDocument::SaveAs(const string& fileName) {
    Document().SaveCopyToFile(fileName, /*keepSource=*/false, /*takeName=*/true);
    FFilename = fileName;
    return true;
}

int TJSPDFDocument::GetLastError() {
    return FLastError;
}
