#pragma once
// The dialog that asks for a file to open, shown by whoever has a desktop. Without one nothing is chosen.
#include "base/Text.h"

/// What is asked for, and the answer.
struct TFileDialog {
    string Filter;           ///< as "Images (*.png *.jpg);;All files (*)"
    string DefaultExtension; ///< added to a name typed without one; may be empty
    bool FileMustExist = false;
    string FileName; ///< what was chosen
};

class TFileDialogHost {
public:
    virtual ~TFileDialogHost() = default;
    /// Shows the dialog and waits. True if the user confirmed; the name then stands in `dialog`. On the main
    /// thread.
    virtual bool Execute(TFileDialog& dialog) = 0;
};

/// The registered host, or one that answers as if the user had cancelled.
[[nodiscard]] TFileDialogHost& FileDialogHost();
/// Not owned; null takes the registered one away.
void SetFileDialogHost(TFileDialogHost* host);
