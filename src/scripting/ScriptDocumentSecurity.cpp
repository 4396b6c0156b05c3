#include "engine/core/Security.h"
#include "engine/document/Document.h"
#include "engine/pdf/Numbers.h"
#include "scripting/AskForPassword.h"
#include "scripting/ScriptDocument.h"

#include <iterator>

namespace {

/// Only an owner may change how a document is protected, and a signature would no longer hold.
bool MayProtect(const TZQPDFDocument& document) {
    return document.GetCanChangeDocument() && document.GetSignaturesCount() == 0;
}

struct TAlgorithm {
    quint32 Cipher;
    int KeyBits; // 0 where they follow from the cipher
};

using THandler = TPDFPasswordSecurityHandler;

/// By the value of ENC_ALGORITHM_...
constexpr TAlgorithm Algorithms[] = {{THandler::CipherRC4, 40},
                                     {THandler::CipherRC4, 128},
                                     {THandler::CipherAES128, 0},
                                     {THandler::CipherAES256, 0}};

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

bool TJSPDFDocument::Encrypt(const string& OwnerPassword, const string& OpenPassword, int Algo,
                             TPDFDocPermissions* Perms) {
    TZQPDFDocument& document = Document();
    if (document.getIsEncrypted() || !MayProtect(document))
        return false;
    RequireNoNul("The owner password", OwnerPassword); // before the document gets a handler
    RequireNoNul("The open password", OpenPassword);
    auto* handler = new THandler(nullptr);
    document.SetSecurityHandler(handler);
    // Any other value leaves the cipher unchosen, on purpose: saving the document then raises.
    if (Algo >= 0 && Algo < int(std::size(Algorithms))) {
        const TAlgorithm& algorithm = Algorithms[Algo];
        handler->StreamCipher = algorithm.Cipher;
        handler->StringCipher = algorithm.Cipher;
        handler->SetStreamEncryptionKeyBits(algorithm.KeyBits);
        handler->SetStringEncryptionKeyBits(algorithm.KeyBits);
    }
    document.SetUserPassword(Narrow(OpenPassword));
    document.SetOwnerPassword(Narrow(OwnerPassword));
    handler->Permissions()->Load(Perms);
    handler->SetOwnerPassword(Widen(document.OwnerPassword()));
    handler->SetUserPassword(Widen(document.UserPassword()));
    document.Encrypt();
    return true;
}

bool TJSPDFDocument::Decrypt() {
    TZQPDFDocument& document = Document();
    if (!MayProtect(document))
        return false;
    const auto* handler = qobject_cast<THandler*>(document.SecurityHandler());
    if (handler == nullptr || !handler->IsOwnerPasswordValid())
        return false;
    return document.Decrypt();
}

int TJSPDFDocument::GetSignaturesCount() {
    return Document().GetSignaturesCount();
}
