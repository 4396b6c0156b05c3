#include "desktop/DesktopMessageBox.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

#include <algorithm>
#include <vector>

namespace {

struct TButton {
    int Code;
    const char* Caption;
    QMessageBox::ButtonRole Role;
};

constexpr TButton Ok = {IDOK, "OK", QMessageBox::AcceptRole};
constexpr TButton Cancel = {IDCANCEL, "Cancel", QMessageBox::RejectRole};
constexpr TButton Abort = {IDABORT, "&Abort", QMessageBox::RejectRole};
constexpr TButton Retry = {IDRETRY, "&Retry", QMessageBox::AcceptRole};
constexpr TButton Ignore = {IDIGNORE, "&Ignore", QMessageBox::AcceptRole};
constexpr TButton Yes = {IDYES, "&Yes", QMessageBox::YesRole};
constexpr TButton No = {IDNO, "&No", QMessageBox::NoRole};
constexpr TButton TryAgain = {IDTRYAGAIN, "&Try Again", QMessageBox::AcceptRole};
constexpr TButton Continue = {IDCONTINUE, "&Continue", QMessageBox::AcceptRole};

constexpr char CodeProperty[] = "morvaneCode";

std::vector<TButton> ButtonsOf(int flags) {
    switch (flags & MB_TYPEMASK) {
    case MB_OKCANCEL:
        return {Ok, Cancel};
    case MB_ABORTRETRYIGNORE:
        return {Abort, Retry, Ignore};
    case MB_YESNOCANCEL:
        return {Yes, No, Cancel};
    case MB_YESNO:
        return {Yes, No};
    case MB_RETRYCANCEL:
        return {Retry, Cancel};
    case MB_CANCELTRYCONTINUE:
        return {Cancel, TryAgain, Continue};
    default:
        return {Ok};
    }
}

QMessageBox::Icon IconOf(int flags) {
    constexpr int IconMask = 0xF0;
    switch (flags & IconMask) {
    case MB_ICONERROR:
        return QMessageBox::Critical;
    case MB_ICONQUESTION:
        return QMessageBox::Question;
    case MB_ICONWARNING:
        return QMessageBox::Warning;
    case MB_ICONINFORMATION:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

/// Buttons that aren't there count as the first.
size_t DefaultButtonOf(int flags, size_t count) {
    const size_t index = size_t(flags & MB_DEFMASK) / MB_DEFBUTTON2;
    return index < count ? index : 0;
}

void AddButtons(QMessageBox& box, int flags) {
    const std::vector<TButton> buttons = ButtonsOf(flags);
    const TButton& first = buttons[DefaultButtonOf(flags, buttons.size())];
    for (const TButton& button : buttons) {
        QPushButton* made = box.addButton(QLatin1String(button.Caption), button.Role);
        made->setProperty(CodeProperty, button.Code);
        if (button.Code == first.Code)
            box.setDefaultButton(made);
        if (button.Code == IDCANCEL || buttons.size() == 1)
            box.setEscapeButton(made);
    }
}

/// A text that would push the buttons off the screen shows its beginning, and the rest on demand.
void SetTextOf(QMessageBox& box, const string& text) {
    const QScreen* screen = box.screen();
    const int room = screen ? screen->availableGeometry().height() / 2 : 0;
    const int lines = std::max(room / box.fontMetrics().lineSpacing(), 5);
    constexpr int CharactersALine = 80;
    const string head = text.section(u'\n', 0, lines - 1).left(qsizetype(lines) * CharactersALine);
    if (head.size() == text.size()) {
        box.setText(text);
        return;
    }
    box.setText(head + u'\u2026');
    box.setDetailedText(text);
}

QMessageBox* MakeBox(const string& text, const string& caption, int flags) {
    auto* box = new QMessageBox(IconOf(flags), caption, {});
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowFlag(Qt::WindowStaysOnTopHint, (flags & (MB_TOPMOST | MB_SYSTEMMODAL)) != 0);
    SetTextOf(*box, text);
    AddButtons(*box, flags);
    return box;
}

} // namespace

int TDesktopMessageBoxHost::Show(const string& text, const string& caption, int flags) {
    int code = AnswerAsIfClosed(flags);
    FQuestions.Ask([&] { return MakeBox(text, caption, flags); },
                   [&](const QDialog& box) {
                       if (const QAbstractButton* clicked =
                               static_cast<const QMessageBox&>(box).clickedButton())
                           code = clicked->property(CodeProperty).toInt();
                   });
    return code;
}
