#include "desktop/DesktopFileDialog.h"

#include <QFileDialog>

namespace {

QFileDialog* MakeDialog(const TFileDialog& asked) {
    auto* dialog = new QFileDialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(asked.FileMustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    if (!asked.Filter.isEmpty())
        dialog->setNameFilter(asked.Filter);
    dialog->setDefaultSuffix(asked.DefaultExtension); // with or without its dot
    if (!asked.FileName.isEmpty())
        dialog->selectFile(asked.FileName);
    return dialog;
}

} // namespace

bool TDesktopFileDialogHost::Execute(TFileDialog& dialog) {
    bool confirmed = false;
    FQuestions.Ask([&] { return MakeDialog(dialog); },
                   [&](const QDialog& shown) {
                       const QStringList chosen = static_cast<const QFileDialog&>(shown).selectedFiles();
                       confirmed = shown.result() == QDialog::Accepted && !chosen.isEmpty();
                       if (confirmed)
                           dialog.FileName = chosen.first();
                   });
    return confirmed;
}
