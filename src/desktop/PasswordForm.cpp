#include "desktop/PasswordForm.h"

#include "desktop/LockImage.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

/// Lets long words, as file names can be, go over the end of a line.
string Breakable(const string& text) {
    constexpr int LongestPiece = 24;
    string broken;
    int piece = 0;
    for (const QChar character : text) {
        piece = character.isSpace() ? 0 : piece + 1;
        if (piece > LongestPiece && !character.isLowSurrogate() && !character.isMark()) {
            broken.append(u'\u200B'); // a blank without width
            piece = 1;
        }
        broken.append(character);
    }
    return broken;
}

} // namespace

TfrmPassword::TfrmPassword(const string& message)
    : Label1(new QLabel(Breakable(message), this)),
      Label2(new QLabel(QStringLiteral("Enter password: "), this)), TeSEdit1(new QLineEdit(this)),
      TeButton1(new QPushButton(QStringLiteral("&OK"), this)),
      TeButton2(new QPushButton(QStringLiteral("&Cancel"), this)) {
    setWindowTitle(QStringLiteral("Password"));
    Label1->setTextFormat(Qt::PlainText); // a file's name is no mark-up
    Label1->setWordWrap(/*on=*/true);
    Label2->setBuddy(TeSEdit1);
    TeSEdit1->setEchoMode(QLineEdit::Password);
    TeSEdit1->setAccessibleName(Label2->text().trimmed());
    TeButton1->setDefault(/*default=*/true);
    connect(TeButton1, &QPushButton::clicked, this, &QDialog::accept);
    connect(TeButton2, &QPushButton::clicked, this, &QDialog::reject);
    LayOut();
    TeSEdit1->setFocus();
}

void TfrmPassword::LayOut() {
    constexpr int WidthInCharacters = 42;
    Label1->setMinimumWidth(fontMetrics().averageCharWidth() * WidthInCharacters);
    auto* buttons = new QDialogButtonBox(this); // in the order of the desktop's style
    buttons->addButton(TeButton1, QDialogButtonBox::AcceptRole);
    buttons->addButton(TeButton2, QDialogButtonBox::RejectRole);
    auto* grid = new QGridLayout(this);
    grid->setSizeConstraint(QLayout::SetFixedSize); // the border is that of a dialog
    grid->setHorizontalSpacing(fontMetrics().height());
    grid->addWidget(new TLockImage(this), 0, 0, 3, 1, Qt::AlignTop);
    grid->addWidget(Label1, 0, 1);
    grid->addWidget(Label2, 1, 1);
    grid->addWidget(TeSEdit1, 2, 1);
    grid->setRowMinimumHeight(3, fontMetrics().height() / 2);
    grid->addWidget(buttons, 4, 0, 1, 2);
}

string TfrmPassword::Password() const {
    return TeSEdit1->text();
}

void TfrmPassword::Retire() {
    Label1->clear();
    TeSEdit1->setText({}); // unlike clear(), with all that could be undone
    // Later: one of the buttons may be at work on its click.
    const auto giveBack = [this] {
        qDeleteAll(findChildren<QObject*>(Qt::FindDirectChildrenOnly));
        destroy();
    };
    QMetaObject::invokeMethod(this, giveBack, Qt::QueuedConnection);
}
