#include "scripting/AskForPassword.h"

#include "base/Journal.h"
#include "base/Paths.h"
#include "engine/Document.h"

#include <atomic>

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

std::atomic<TPasswordPrompt*> RegisteredPrompt = nullptr;

} // namespace

TPasswordPrompt& PasswordPrompt() {
    static TCancellingPrompt cancelling;
    TPasswordPrompt* prompt = RegisteredPrompt.load();
    return prompt ? *prompt : cancelling;
}

void SetPasswordPrompt(TPasswordPrompt* prompt) {
    RegisteredPrompt.store(prompt);
}

bool PasswordFits(const string& fileName, const string& password, TIsPasswordOkOption option) {
    TPDFSecurityHandlerType handlerType{};
    return TPDFDocument::IsPasswordOk(fileName, Narrow(password), handlerType, option);
}

bool AskForPassword(const string& FileName, TIsPasswordOkOption Option, string& Password) {
    string candidate = Password;
    while (!PasswordFits(FileName, candidate, Option)) {
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
