#include "platform/HiddenWindow.h"

#include "platform/MessageQueue.h"

#include <map>
#include <mutex>
#include <unistd.h>

namespace {

struct TWindow {
    string ClassName;
    THiddenWindow::TWndProc WndProc;
    std::shared_ptr<TMessageQueue> Queue;
};

struct TRegistry {
    std::mutex Lock;
    std::map<TWindowHandle, std::shared_ptr<const TWindow>> Windows;
    quint32 Count = 0;

    std::shared_ptr<const TWindow> Find(TWindowHandle handle) {
        const std::lock_guard guard(Lock);
        const auto found = Windows.find(handle);
        return found == Windows.end() ? nullptr : found->second;
    }
};

/// Never destroyed: a thread may still post while the process ends.
TRegistry& Registry() {
    static auto& registry = *new TRegistry;
    return registry;
}

} // namespace

THiddenWindow::THiddenWindow(TWndProc wndProc, const string& className) {
    auto window = std::make_shared<const TWindow>(
        TWindow{className, std::move(wndProc), TMessageQueue::OfThisThread()});
    TRegistry& registry = Registry();
    const std::lock_guard guard(registry.Lock);
    FHandle = (quint64(::getpid()) << 32) | ++registry.Count;
    registry.Windows.emplace(FHandle, std::move(window));
}

THiddenWindow::~THiddenWindow() {
    std::shared_ptr<const TWindow> window; // goes outside the lock: its procedure may own anything
    TRegistry& registry = Registry();
    const std::lock_guard guard(registry.Lock);
    if (auto node = registry.Windows.extract(FHandle))
        window = std::move(node.mapped());
}

void DefWindowProc(TMessage& message) {
    message.Result = 0;
}

bool PostMessage(TWindowHandle window, TMessage message) {
    const auto receiver = Registry().Find(window);
    return receiver && receiver->Queue->Post([window, posted = std::move(message)] {
        SendMessage(window, posted); // looked up anew: the window may have gone meanwhile
    });
}

qint64 SendMessage(TWindowHandle window, TMessage message) {
    const auto receiver = Registry().Find(window);
    if (!receiver)
        return 0;
    receiver->WndProc(message);
    return message.Result;
}

std::vector<TWindowHandle> FindWindows(const string& className) {
    TRegistry& registry = Registry();
    const std::lock_guard guard(registry.Lock);
    std::vector<TWindowHandle> found;
    for (const auto& [handle, window] : registry.Windows)
        if (window->ClassName == className)
            found.push_back(handle);
    return found;
}
