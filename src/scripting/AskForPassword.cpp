#include "scripting/AskForPassword.h"

#include "base/Journal.h"
#include "base/Paths.h"
#include "engine/document/Document.h"
#include "platform/HostSlot.h"

namespace {

const string SFileProtected = QStringLiteral("'%1' is protected.");
const string SPermissionOwner = QStringLiteral("To change it, enter its owner password.");
const string SPermissionOpen = QStringLiteral("To open it, enter its password.");

class TCancellingPrompt : public TPasswordPrompt {
public:
    std::optional<string> Ask(const string& message) override {
        JournalLine(message + QStringLiteral(" There is nobody to ask, so this was cancelled."));
        return std::nullopt;
    }
};

THostSlot<TPasswordPrompt, TCancellingPrompt> Slot;

} // namespace

TPasswordPrompt& PasswordPrompt() {
    return Slot.Get();
}

void SetPasswordPrompt(TPasswordPrompt* prompt) {
    Slot.Set(prompt);
}

bool PasswordFits(const string& fileName, const string& password, TIsPasswordOkOption option,
                  TTestedFile* tested) {
    TPDFSecurityHandlerType handlerType{};
    return TPDFDocument::IsPasswordOk(fileName, Narrow(password), handlerType, option, tested);
}

bool AskForPassword(const string& FileName, TIsPasswordOkOption Option, string& Password,
                    TTestedFile* tested) {
    string candidate = Password;
    while (!PasswordFits(FileName, candidate, Option, tested)) {
        const bool owner = Option == TIsPasswordOkOption::poPermission;
        const std::optional<string> typed =
            PasswordPrompt().Ask(SFileProtected.arg(ExtractFileName(FileName)) + u' ' +
                                 (owner ? SPermissionOwner : SPermissionOpen));
        if (!typed)
            return false;
        candidate = *typed;
    }
    Password = candidate;
    return true;
}
