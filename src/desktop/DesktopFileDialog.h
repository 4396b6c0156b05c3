#pragma once
// The dialog that asks for a file to open, on the desktop.
#include "desktop/DesktopQuestions.h"
#include "platform/FileDialog.h"

class TDesktopFileDialogHost : public TFileDialogHost {
public:
    bool Execute(TFileDialog& dialog) override;

private:
    TDesktopQuestions FQuestions;
};
