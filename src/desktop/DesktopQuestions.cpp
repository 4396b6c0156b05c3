#include "desktop/DesktopQuestions.h"

#include "platform/MessageQueue.h"

#include <QCoreApplication>
#include <QDialog>
#include <QEventLoop>
#include <QThread>

#include <chrono>
#include <future>

/// What one thread asks. Its functions live as long as the call that waits for the answer.
struct TDesktopQuestions::TQuestion {
    const TMake& Make;
    const TTake& Take;
    Qt::WindowModality Modality = Qt::NonModal;
    std::promise<void> Answer = {};
    std::function<void()> Answered = nullptr; ///< called on the main thread, after the answer is there

    void End() {
        const auto answered = Answered; // the asking thread may go on, and its functions with it
        Answer.set_value();
        if (answered)
            answered();
    }
};

TDesktopQuestions::TDesktopQuestions() : FQueue(TMessageQueue::OfThisThread()) {}

TDesktopQuestions::~TDesktopQuestions() {
    CloseAll();
    // No event loop comes any more that would delete what has been closed.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void TDesktopQuestions::Ask(const TMake& make, const TTake& take) {
    const auto question = std::make_shared<TQuestion>(TQuestion{make, take});
    const auto answer = question->Answer.get_future();
    if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
        if (FQueue->Post([this, question] { Open(question); }))
            answer.wait();
        return;
    }
    QEventLoop loop;
    question->Modality = Qt::ApplicationModal; // the caller's own windows are held up too
    question->Answered = [&loop] { loop.exit(); };
    const auto isAnswered = [&answer] {
        return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    Open(question);
    if (!isAnswered())
        loop.exec();
    if (!isAnswered())
        CloseAll(); // the application was told to end while the dialog was open
}

void TDesktopQuestions::Open(const std::shared_ptr<TQuestion>& question) {
    if (FClosed) {
        question->End();
        return;
    }
    QDialog* dialog = question->Make();
    FOpen.append(dialog);
    const auto finish = [this, dialog, question] {
        FOpen.removeOne(dialog);
        question->Take(*dialog);
        question->End();
    };
    QObject::connect(dialog, &QDialog::finished, dialog, finish, Qt::SingleShotConnection);
    dialog->setWindowModality(question->Modality);
    dialog->show();
    dialog->raise();
}

void TDesktopQuestions::CloseAll() {
    FClosed = true;
    const QList<QDialog*> open = FOpen; // each takes itself out
    for (QDialog* dialog : open)
        dialog->done(QDialog::Rejected);
}
