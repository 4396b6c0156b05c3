#include "engine/save/Encryption.h"

#include "engine/pdf/Passwords.h"

#include <qpdf/QPDFWriter.hh>

#include <QRandomGenerator>

namespace {

using THandler = TPDFPasswordSecurityHandler;

constexpr quint32 AllBits = 0xFFFFFFFF;

/// Bit `number` of table 22, counted from 1.
constexpr bool Bit(quint32 bits, int number) {
    return (bits >> (number - 1) & 1) != 0;
}

/// Revision 2 knows bits 3 to 6 only, and each stands for what later ones tell apart (ISO 32000-1, table 22):
/// changing for assembling pages, annotating for filling in, copying for accessibility, printing for printing
/// well. Whatever its further bits say means nothing.
constexpr quint32 ModernBits(quint32 bits, int revision) {
    if (revision >= 3)
        return bits;
    for (const auto& [old, now] : {std::pair(4, 11), std::pair(6, 9), std::pair(5, 10), std::pair(3, 12)})
        bits = (bits & ~(1U << (now - 1))) | quint32(Bit(bits, old)) << (now - 1);
    return bits;
}

/// Readers take the open password for the owner's where none is set, and an empty one for anybody's, which
/// lifts every restriction. A random one keeps them.
string OwnerPasswordOf(const THandler& handler) {
    if (!handler.OwnerPassword().isEmpty())
        return handler.OwnerPassword();
    string random;
    for (int i = 0; i < 4; ++i)
        random += QString::number(QRandomGenerator::system()->generate(), 16);
    return random;
}

qpdf_r3_print_e PrintPermission(const TPDFDocPermissions& allowed) {
    if (!allowed.FPrint)
        return qpdf_r3p_none;
    return allowed.FPrintHighResolution ? qpdf_r3p_full : qpdf_r3p_low;
}

void SetRc4(QPDFWriter& writer, const THandler& handler) {
    const TPDFDocPermissions& p = *handler.Permissions();
    const std::string user = PdfDocPassword(handler.UserPassword());
    const std::string owner = PdfDocPassword(OwnerPasswordOf(handler));
    if (handler.StreamKeyBits() == 40)
        writer.setR2EncryptionParametersInsecure(user.c_str(), owner.c_str(), p.FPrint, p.FModify, p.FCopy,
                                                 p.FAnnotate);
    else
        writer.setR3EncryptionParametersInsecure(user.c_str(), owner.c_str(), p.FAccessibility, p.FCopy,
                                                 p.FAssemble, p.FAnnotate, p.FFillForms, p.FModify,
                                                 PrintPermission(p));
}

void SetAes128(QPDFWriter& writer, const THandler& handler) {
    const TPDFDocPermissions& p = *handler.Permissions();
    const std::string user = PdfDocPassword(handler.UserPassword());
    const std::string owner = PdfDocPassword(OwnerPasswordOf(handler));
    writer.setR4EncryptionParametersInsecure(user.c_str(), owner.c_str(), p.FAccessibility, p.FCopy,
                                             p.FAssemble, p.FAnnotate, p.FFillForms, p.FModify,
                                             PrintPermission(p), /*encrypt_metadata*/ true, /*use_aes*/ true);
}

void SetAes256(QPDFWriter& writer, const THandler& handler) {
    const TPDFDocPermissions& p = *handler.Permissions();
    const std::string user = Aes256Password(handler.UserPassword());
    const std::string owner = Aes256Password(OwnerPasswordOf(handler));
    writer.setR6EncryptionParameters(user.c_str(), owner.c_str(), p.FAccessibility, p.FCopy, p.FAssemble,
                                     p.FAnnotate, p.FFillForms, p.FModify, PrintPermission(p),
                                     /*encrypt_metadata*/ true);
}

quint32 CipherOf(int version, QPDF::encryption_method_e method) {
    if (version < 4) // which know nothing else
        return THandler::CipherRC4;
    switch (method) {
    case QPDF::e_aes:
        return THandler::CipherAES128;
    case QPDF::e_aesv3:
        return THandler::CipherAES256;
    case QPDF::e_rc4:
        return THandler::CipherRC4;
    case QPDF::e_unknown:
    case QPDF::e_none:
        break;
    }
    return THandler::CipherNone;
}

} // namespace

void SetEncryption(QPDFWriter& writer, const TDocumentCore& core) {
    const auto* handler = dynamic_cast<const THandler*>(core.Handler.get());
    const quint32 cipher = handler ? handler->StreamCipher : THandler::CipherNone;
    const bool known = cipher == THandler::CipherAES128 || cipher == THandler::CipherAES256 ||
                       (cipher == THandler::CipherRC4 &&
                        (handler->StreamKeyBits() == 40 || handler->StreamKeyBits() == 128));
    if (!known || handler->StringCipher != cipher || handler->StringKeyBits() != handler->StreamKeyBits())
        throw EPDFError(
            QStringLiteral("No encryption algorithm was chosen, so the document was not written."));
    if (cipher == THandler::CipherAES256)
        SetAes256(writer, *handler);
    else if (cipher == THandler::CipherAES128)
        SetAes128(writer, *handler);
    else
        SetRc4(writer, *handler);
}

quint32 PermissionBits(const TPDFSource& source) {
    int revision = 0;
    int bits = 0;
    if (!source.Pdf->isEncrypted(revision, bits) || source.Pdf->ownerPasswordMatched())
        return AllBits;
    return ModernBits(quint32(bits), revision);
}

std::unique_ptr<TPDFPasswordSecurityHandler> HandlerOf(const TPDFSource& source) {
    int revision = 0;
    int permissions = 0;
    int version = 0;
    QPDF::encryption_method_e streams{};
    QPDF::encryption_method_e strings{};
    QPDF::encryption_method_e files{};
    if (!source.Pdf->isEncrypted(revision, permissions, version, streams, strings, files))
        return nullptr;
    auto handler = std::make_unique<THandler>(nullptr);
    handler->StreamCipher = CipherOf(version, streams);
    handler->StringCipher = CipherOf(version, strings);
    const int keyBits = version == 1 ? 40 : 128;
    handler->SetStreamEncryptionKeyBits(keyBits);
    handler->SetStringEncryptionKeyBits(keyBits);
    handler->SetOwnerPasswordValid(source.Pdf->ownerPasswordMatched());
    const quint32 bits = ModernBits(quint32(permissions), revision);
    TPDFDocPermissions& p = *handler->Permissions();
    p.FPrint = Bit(bits, 3);
    p.FModify = Bit(bits, 4);
    p.FCopy = Bit(bits, 5);
    p.FAnnotate = Bit(bits, 6);
    p.FFillForms = Bit(bits, 9);
    p.FAccessibility = Bit(bits, 10);
    p.FAssemble = Bit(bits, 11);
    p.FPrintHighResolution = Bit(bits, 12);
    return handler;
}
