#include "desktop/DesktopMessageBox.h"

#include "platform/MessageQueue.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEventLoop>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

#include <chrono>
#include <vector>

/// What one box asks; its answer may be waited for on any thread.
struct TDesktopMessageBoxHost::TQuestion {
    string Text;
    string Caption;
    int Flags = MB_OK;
    std::promise<int> Answer;
    std::function<void()> Answered = nullptr; ///< called on the main thread, after the answer is there
};

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

void AddButtons(QMessageBox& box, int flags) {
    const std::vector<TButton> buttons = ButtonsOf(flags);
    for (const TButton& button : buttons) {
        QAbstractButton* made = box.addButton(QLatin1String(button.Caption), button.Role);
        made->setProperty(CodeProperty, button.Code);
        if (button.Code == IDCANCEL || buttons.size() == 1)
            box.setEscapeButton(made);
    }
}

int CodeOf(const QMessageBox& box, int flags) {
    const QAbstractButton* clicked = box.clickedButton();
    return clicked ? clicked->property(CodeProperty).toInt() : AnswerAsIfClosed(flags);
}

} // namespace

TDesktopMessageBoxHost::TDesktopMessageBoxHost() : FQueue(TMessageQueue::OfThisThread()) {}

int TDesktopMessageBoxHost::Show(const string& text, const string& caption, int flags) {
    const auto question = std::make_shared<TQuestion>();
    question->Text = text;
    question->Caption = caption;
    question->Flags = flags;
    auto answer = question->Answer.get_future();
    if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
        if (!FQueue->Post([this, question] { Open(question); }))
            return AnswerAsIfClosed(flags);
        return answer.get();
    }
    QEventLoop loop;
    question->Answered = [&loop] { loop.exit(); };
    Open(question);
    if (answer.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        loop.exec();
    if (answer.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        CloseAll(); // the application was told to end while the box was open
    return answer.get();
}

void TDesktopMessageBoxHost::Open(const std::shared_ptr<TQuestion>& question) {
    const auto answer = [question](int code) {
        question->Answer.set_value(code);
        if (question->Answered)
            question->Answered();
    };
    if (FClosed) {
        answer(AnswerAsIfClosed(question->Flags));
        return;
    }
    auto* box = new QMessageBox(IconOf(question->Flags), question->Caption, question->Text);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    AddButtons(*box, question->Flags);
    FOpen.append(box);
    QObject::connect(box, &QDialog::finished, box, [this, box, answer, flags = question->Flags] {
        FOpen.removeOne(box);
        answer(CodeOf(*box, flags));
    });
    box->show();
    box->raise();
}

void TDesktopMessageBoxHost::CloseAll() {
    FClosed = true;
    const QList<QMessageBox*> open = FOpen; // each takes itself out
    for (QMessageBox* box : open)
        box->done(QDialog::Rejected);
}
