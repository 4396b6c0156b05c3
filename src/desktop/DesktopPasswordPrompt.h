#pragma once
// The prompt for a password, on the desktop.
#include "desktop/DesktopQuestions.h"
#include "desktop/PasswordForm.h"
#include "scripting/AskForPassword.h"

class TDesktopPasswordPrompt : public TPasswordPrompt {
public:
    std::optional<string> Ask(const string& message) override;
    void CancelAll() override { FQuestions.CloseAll(); }

private:
    /// Every form that was ever shown, on purpose: a prompt makes a new one, and none is freed before the
    /// program ends. A form that was answered is emptied, so that it costs next to nothing.
    std::vector<std::unique_ptr<TfrmPassword>> FForms;
    TDesktopQuestions FQuestions; // goes first, and answers what is open
};
