#include "platform/TrayIcon.h"

#include "platform/MessageQueue.h"

namespace {
TTrayIconHost* RegisteredHost = nullptr;
} // namespace

TTrayIconHost* TrayIconHost() {
    return RegisteredHost;
}

void SetTrayIconHost(TTrayIconHost* host) {
    RegisteredHost = host;
}

TTrayIcon::TTrayIcon(TComponent* owner)
    : TComponent(owner), FQueue(TMessageQueue::OfThisThread()), FAlive(std::make_shared<bool>(true)) {}

TTrayIcon::~TTrayIcon() {
    *FAlive = false;
}

void TTrayIcon::SetVisible(bool visible) {
    if (visible == FVisible)
        return;
    FVisible = visible;
    FView.reset();
    if (TTrayIconHost* host = TrayIconHost(); host && visible)
        FView = host->Show({.Icon = Icon,
                            .Icons = Icons,
                            .Animate = FAnimate,
                            .AnimateInterval = FAnimateInterval,
                            .PopupMenu = PopupMenu,
                            .Hint = Hint()});
}

string TTrayIcon::Hint() const {
    const std::lock_guard guard(FHintLock);
    return FHint;
}

void TTrayIcon::SetHint(const string& text) {
    const std::lock_guard guard(FHintLock);
    if (text == FHint)
        return;
    FHint = text;
    if (FHintQueued)
        return;
    FHintQueued = FQueue->Post([this, alive = FAlive] {
        if (*alive)
            ShowHint();
    });
}

void TTrayIcon::ShowHint() {
    string text;
    {
        const std::lock_guard guard(FHintLock);
        FHintQueued = false;
        text = FHint;
    }
    if (FView)
        FView->SetHint(text);
}
