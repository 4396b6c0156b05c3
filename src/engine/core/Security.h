#pragma once
// How a document is protected.
#include "base/Component.h"
#include "engine/core/Permissions.h"

/// Base of the ways to protect a document. A handler given to a document belongs to it.
class TPDFSecurityHandler : public TComponent {
    Q_OBJECT
public:
    explicit TPDFSecurityHandler(TComponent* owner) : TComponent(owner) {}

    [[nodiscard]] TPDFDocPermissions* Permissions() { return &FPermissions; }
    [[nodiscard]] const TPDFDocPermissions* Permissions() const { return &FPermissions; }

private:
    TPDFDocPermissions FPermissions;
};

/// The standard handler of ISO 32000: a password to open, another that lifts the restrictions.
class TPDFPasswordSecurityHandler : public TPDFSecurityHandler {
    Q_OBJECT
public:
    explicit TPDFPasswordSecurityHandler(TComponent* owner) : TPDFSecurityHandler(owner) {}

    static constexpr quint32 CipherNone = 0; ///< never chosen: saving raises
    static constexpr quint32 CipherRC4 = 0x7001;
    static constexpr quint32 CipherAES128 = 0x7005;
    static constexpr quint32 CipherAES256 = 0x7007;

    quint32 StreamCipher = CipherNone;
    quint32 StringCipher = CipherNone;

    /// Key lengths count for RC4 only, 40 or 128; those of AES follow from the cipher.
    void SetStreamEncryptionKeyBits(int bits) { FStreamBits = bits; }
    void SetStringEncryptionKeyBits(int bits) { FStringBits = bits; }
    [[nodiscard]] int StreamKeyBits() const;
    [[nodiscard]] int StringKeyBits() const;

    void SetUserPassword(const string& password) { FUserPassword = password; }
    void SetOwnerPassword(const string& password) { FOwnerPassword = password; }
    [[nodiscard]] const string& UserPassword() const { return FUserPassword; }
    [[nodiscard]] const string& OwnerPassword() const { return FOwnerPassword; }

    /// Whether the document was opened with its owner password, or was encrypted here.
    [[nodiscard]] bool IsOwnerPasswordValid() const { return FOwnerPasswordValid; }
    void SetOwnerPasswordValid(bool valid) { FOwnerPasswordValid = valid; }

private:
    int FStreamBits = 0;
    int FStringBits = 0;
    string FUserPassword;
    string FOwnerPassword;
    bool FOwnerPasswordValid = false;
};
