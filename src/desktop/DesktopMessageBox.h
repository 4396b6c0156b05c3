#pragma once
// Message boxes on the desktop.
#include "desktop/DesktopQuestions.h"
#include "platform/MessageBox.h"

class TDesktopMessageBoxHost : public TMessageBoxHost {
public:
    int Show(const string& text, const string& caption, int flags) override;
    void CloseAll() override { FQuestions.CloseAll(); }

private:
    TDesktopQuestions FQuestions;
};
