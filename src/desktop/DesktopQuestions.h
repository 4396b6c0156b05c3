#pragma once
// Dialogs that any thread may ask through. The dialog itself lives on the main thread and holds up nothing
// else there; the thread that asks is held until it is answered.
#include <QList>

#include <functional>
#include <memory>

class QDialog;
class TMessageQueue;

class TDesktopQuestions {
public:
    using TMake = std::function<QDialog*()>;
    using TTake = std::function<void(QDialog&)>;

    /// On the main thread, which must deliver its message queue.
    TDesktopQuestions();
    /// Answers what is open as CloseAll does. On the main thread.
    ~TDesktopQuestions();
    TDesktopQuestions(const TDesktopQuestions&) = delete;
    TDesktopQuestions& operator=(const TDesktopQuestions&) = delete;

    /// Has the main thread make a dialog and show it, and `take` its answer once the user has ended it. A
    /// dialog stays its maker's, or has WA_DeleteOnClose. Returns without either call where nobody can be
    /// asked any more. On the main thread the dialog is modal and events go on meanwhile; the end of the
    /// application rejects it.
    void Ask(const TMake& make, const TTake& take);

    /// Rejects the dialogs that are open, and asks nobody from now on: the program is stopping. On the main
    /// thread.
    void CloseAll();

private:
    struct TQuestion;
    void Open(const std::shared_ptr<TQuestion>& question);

    const std::shared_ptr<TMessageQueue> FQueue; ///< the main thread's
    QList<QDialog*> FOpen;
    bool FClosed = false;
};
