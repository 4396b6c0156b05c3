// Protection: tests on files, permissions, encryption.
#include "engine/core/DocumentCore.h"
#include "engine/document/Document.h"
#include "engine/pdf/Numbers.h"
#include "engine/save/Encryption.h"

namespace {

/// The bits of ISO 32000-1, table 22, from 1 on.
constexpr quint32 ModifyBit = 1U << 3;
constexpr quint32 AnnotateBit = 1U << 5;
constexpr quint32 AssembleBit = 1U << 10;

/// Asked before an operation, which does nothing where the answer is no: that is on record then.
bool Allows(TDocumentCore& core, quint32 bits, const char* what) {
    if (!core.Source || (PermissionBits(*core.Source) & bits) != 0)
        return true;
    core.Warnings.Add(
        TWarningKind::PermissionRefused,
        QStringLiteral("The document's permissions don't allow changing %1.").arg(QLatin1String(what)));
    return false;
}

void Leave(TPDFSourcePtr source, TTestedFile* tested) {
    if (tested)
        tested->Keep(std::move(source));
}

} // namespace

bool TPDFDocument::IsPasswordProtected(const string& fileName, int descriptor, TTestedFile* tested) {
    try {
        Leave(OpenSource(fileName, {}, descriptor), tested);
        return false;
    } catch (const EPDFError& e) {
        if (e.Kind() == TPDFErrorKind::NeedsPassword || e.Kind() == TPDFErrorKind::Unsupported)
            return true;
        throw;
    }
}

bool TPDFDocument::IsPasswordOk(const string& fileName, const NarrowString& password,
                                TPDFSecurityHandlerType& handlerType, TIsPasswordOkOption option,
                                TTestedFile* tested) {
    handlerType = TPDFSecurityHandlerType::shPassword;
    try {
        TPDFSourcePtr source = OpenSource(fileName, password);
        const QPDF& pdf = *source->Pdf;
        const bool open = pdf.userPasswordMatched();
        const bool permission = pdf.ownerPasswordMatched();
        if (!pdf.isEncrypted())
            handlerType = TPDFSecurityHandlerType::shNone;
        const bool ok = !pdf.isEncrypted() || option == TIsPasswordOkOption::poAny ||
                        (option == TIsPasswordOkOption::poOpen ? open : permission);
        Leave(std::move(source), tested);
        return ok;
    } catch (const EPDFError& e) {
        if (e.Kind() == TPDFErrorKind::Unsupported)
            handlerType = TPDFSecurityHandlerType::shPublicKey;
        else if (e.Kind() != TPDFErrorKind::NeedsPassword && e.Kind() != TPDFErrorKind::WrongPassword)
            throw;
        return false;
    }
}

bool TPDFDocument::getIsEncrypted() const {
    const TDocumentCore& core = Core();
    if (core.Protection != TProtection::AsOpened)
        return core.Protection == TProtection::Encrypt;
    return core.Source && core.Source->Pdf->isEncrypted();
}

bool TPDFDocument::GetCanModify() const {
    return Allows(Core(), ModifyBit, "its contents");
}

bool TPDFDocument::GetCanModifyAnnots() const {
    return Allows(Core(), AnnotateBit, "its annotations");
}

bool TPDFDocument::GetCanModifyPages() const {
    return Allows(Core(), AssembleBit | ModifyBit, "its pages");
}

bool TPDFDocument::GetCanModifyOutlines() const {
    return Allows(Core(), AssembleBit | ModifyBit, "its outline");
}

bool TPDFDocument::GetCanChangeDocument() const {
    return Allows(Core(), ModifyBit, "the document");
}

TPDFSecurityHandler* TPDFDocument::SecurityHandler() const {
    return Core().Handler.get();
}

void TPDFDocument::SetSecurityHandler(TPDFSecurityHandler* handler) {
    if (handler != Core().Handler.get())
        Core().Handler.reset(handler);
}

void TPDFDocument::SetUserPassword(const NarrowString& password) {
    RequireNoNul("The open password", Widen(password));
    Core().UserPassword = password;
}

void TPDFDocument::SetOwnerPassword(const NarrowString& password) {
    RequireNoNul("The owner password", Widen(password));
    Core().OwnerPassword = password;
}

const NarrowString& TPDFDocument::UserPassword() const {
    return Core().UserPassword;
}

const NarrowString& TPDFDocument::OwnerPassword() const {
    return Core().OwnerPassword;
}

void TPDFDocument::Encrypt() {
    auto* handler = dynamic_cast<TPDFPasswordSecurityHandler*>(Core().Handler.get());
    if (!handler)
        throw EPDFError(QStringLiteral("There is no security handler that works with passwords."));
    handler->SetOwnerPasswordValid(true);
    Core().Protection = TProtection::Encrypt;
    Changed();
}

bool TPDFDocument::Decrypt() {
    const auto* handler = dynamic_cast<const TPDFPasswordSecurityHandler*>(Core().Handler.get());
    if (!handler || !handler->IsOwnerPasswordValid())
        return false;
    Core().Protection = TProtection::Remove;
    Core().Handler.reset();
    Changed();
    return true;
}
