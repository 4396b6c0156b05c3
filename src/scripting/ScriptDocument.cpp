#include "scripting/ScriptDocument.h"

#include "base/Exceptions.h"
#include "engine/Document.h"
#include "engine/Security.h"

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

namespace {
bool PasswordFits(const string& fileName, const string& password, TIsPasswordOkOption option) {
    TPDFSecurityHandlerType handlerType{};
    return TPDFDocument::IsPasswordOk(fileName, Narrow(password), handlerType, option);
}
} // namespace

bool TJSPDFDocument::IsPasswordOK(const string& fileName, const string& Password) {
    return PasswordFits(fileName, Password, TIsPasswordOkOption::poAny);
}

bool TJSPDFDocument::IsOpenPasswordOK(const string& fileName, const string& Password) {
    return PasswordFits(fileName, Password, TIsPasswordOkOption::poOpen);
}

bool TJSPDFDocument::IsPermissionPasswordOK(const string& fileName, const string& Password) {
    return PasswordFits(fileName, Password, TIsPasswordOkOption::poPermission);
}

bool TJSPDFDocument::Decrypt() {
    TZQPDFDocument& document = Document();
    if (!document.GetCanChangeDocument() || document.GetSignaturesCount() != 0)
        return false;
    const auto* handler = qobject_cast<TPDFPasswordSecurityHandler*>(document.SecurityHandler());
    if (handler == nullptr || !handler->IsOwnerPasswordValid())
        return false;
    return document.Decrypt();
}
