#include "actions/ContentActions.h"

#include "platform/FileDialog.h"

bool TPDFActionAddFileAttachment::Config() {
    TFileDialog dialog;
    dialog.Filter = QStringLiteral("All files (*)");
    dialog.FileMustExist = true;
    return FileDialogHost().Execute(dialog);
}
