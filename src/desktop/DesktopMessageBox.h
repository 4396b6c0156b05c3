#pragma once
// Message boxes on the desktop. Any thread may ask for one and is held until it is answered; the box itself
// lives on the main thread and holds up nothing else there.
#include "platform/MessageBox.h"

#include <QList>

#include <future>
#include <memory>

class QMessageBox;
class TMessageQueue;

class TDesktopMessageBoxHost : public TMessageBoxHost {
public:
    /// On the main thread, which must deliver its message queue.
    TDesktopMessageBoxHost();

    int Show(const string& text, const string& caption, int flags) override;
    void CloseAll() override;

private:
    struct TQuestion;
    void Open(const std::shared_ptr<TQuestion>& question);

    const std::shared_ptr<TMessageQueue> FQueue; ///< the main thread's
    QList<QMessageBox*> FOpen;
    bool FClosed = false;
};
