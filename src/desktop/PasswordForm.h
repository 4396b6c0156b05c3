#pragma once
// The form that asks for the password of a protected file: a layout without logic.
#include "base/Text.h"

#include <QDialog>
#include <QPointer>

class QLabel;
class QLineEdit;
class QPushButton;

class TfrmPassword : public QDialog {
public:
    /// Shows `message` above an empty, masked line.
    explicit TfrmPassword(const string& message);
    [[nodiscard]] string Password() const;
    /// The form was answered and stays, hidden. Forgets what was typed at once, and soon gives back its
    /// controls and its window.
    void Retire();

private:
    void LayOut();

    const QPointer<QLabel> Label1;      ///< the message
    const QPointer<QLabel> Label2;      ///< what to type
    const QPointer<QLineEdit> TeSEdit1; ///< the password
    const QPointer<QPushButton> TeButton1;
    const QPointer<QPushButton> TeButton2;
};
