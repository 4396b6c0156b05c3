#include "desktop/DesktopPasswordPrompt.h"

std::optional<string> TDesktopPasswordPrompt::Ask(const string& message) {
    std::optional<string> typed;
    FQuestions.Ask([&] { return FForms.emplace_back(std::make_unique<TfrmPassword>(message)).get(); },
                   [&](QDialog& shown) {
                       auto& form = static_cast<TfrmPassword&>(shown);
                       if (form.result() == QDialog::Accepted)
                           typed = form.Password();
                       form.Retire();
                   });
    return typed;
}
