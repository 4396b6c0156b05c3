#pragma once
#include "actions/Action.h"
#include "engine/core/Permissions.h"

/// Always raises: the document's method asks for "Algo", and the member is called `Algorithm`. That is the
/// format of existing lists; a script can encrypt.
class TPDFActionEncrypt : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionEncrypt() = default;
    PUBLISHED(string, OwnerPassword, FOwnerPassword);
    PUBLISHED(string, OpenPassword, FOpenPassword);
    PUBLISHED(Integer, Algorithm, FAlgo) = 0;
    /// The action's own object. Writing copies into it.
    Q_PROPERTY(TPDFDocPermissions* Perms READ Perms WRITE SetPerms)
    [[nodiscard]] TPDFDocPermissions* Perms() { return &FPerms; }
    void SetPerms(TPDFDocPermissions* permissions) { FPerms.Load(permissions); }

private:
    TPDFDocPermissions FPerms;
};

/// Takes the encryption off a document that was opened with its owner password.
class TPDFActionDecrypt : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionDecrypt() = default;
    bool Config() override { return true; }
};
