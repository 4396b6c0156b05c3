#include "desktop/ScriptChecker.h"

#include "scripting/host/Engine.h"

#include <atomic>

class TScriptChecker::TWorker : public QObject {
public:
    /// Compiles nothing for a question that another has followed.
    void Check(const string& text, int number, TScriptChecker& asker) {
        if (number != Newest)
            return;
        constexpr Cardinal HeapLimit = 256 << 20; // for the largest script's syntax tree
        if (!FEngine)
            FEngine = std::make_unique<TJSEngine>(HeapLimit);
        const bool right = text.trimmed().isEmpty() || FEngine->Global().Compile(text, ":inline:");
        const TJSMessage message = right ? TJSMessage() : FEngine->LastMessage();
        QMetaObject::invokeMethod(
            &asker,
            [&asker, message, number] {
                if (number == asker.FAsked)
                    Q_EMIT asker.Checked(message);
            },
            Qt::QueuedConnection);
    }
    void Close() { FEngine.reset(); }
    std::atomic<int> Newest = 0;

private:
    std::unique_ptr<TJSEngine> FEngine; // made and used on the thread
};

TScriptChecker::TScriptChecker() : FWorker(new TWorker) {
    FWorker->moveToThread(&FThread);
    constexpr uint StackSize = 8 << 20; // scripts nest
    FThread.setStackSize(StackSize);
    FThread.start(QThread::LowPriority);
}

TScriptChecker::~TScriptChecker() {
    FWorker->Newest = -1;
    QMetaObject::invokeMethod(
        FWorker, [worker = FWorker] { worker->Close(); }, Qt::BlockingQueuedConnection);
    FThread.quit();
    FThread.wait();
    delete FWorker;
}

void TScriptChecker::Check(const string& text) {
    const int number = ++FAsked;
    FWorker->Newest = number;
    QMetaObject::invokeMethod(
        FWorker, [this, worker = FWorker, text, number] { worker->Check(text, number, *this); },
        Qt::QueuedConnection);
}
