#include "platform/TrayIcon.h"

#include "platform/MessageQueue.h"

#include <tuple>
#include <utility>

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
                            .AttentionIcon = AttentionIcon,
                            .Icons = Icons,
                            .Animate = FAnimate,
                            .AnimateInterval = FAnimateInterval,
                            .PopupMenu = PopupMenu,
                            .Hint = Hint(),
                            .OnClick = OnClick});
}

string TTrayIcon::Hint() const {
    const std::lock_guard guard(FHintLock);
    return FHint;
}

void TTrayIcon::SetHint(const string& text) {
    const std::lock_guard guard(FHintLock);
    if (text == FHint)
        return;
    FHint = string(text); // moved: an old one is freed here, where checkers of threads see it
    QueueShowing();
}

void TTrayIcon::SetNote(const string& text) {
    const std::lock_guard guard(FHintLock);
    if (text == FNote)
        return;
    FNote = text;
    QueueShowing();
}

void TTrayIcon::SetItem(size_t index, const string& caption, bool enabled) {
    const std::lock_guard guard(FHintLock);
    FItems[index] = {caption, enabled};
    QueueShowing();
}

void TTrayIcon::SetTrouble(const string& text, const string& notice) {
    const std::lock_guard guard(FHintLock);
    if (text == FTrouble && notice.isEmpty())
        return;
    FTrouble = text;
    FNotice = notice;
    QueueShowing();
}

void TTrayIcon::QueueShowing() {
    if (!FQueued)
        FQueued = FQueue->Post([this, alive = FAlive] {
            if (*alive)
                Show();
        });
}

void TTrayIcon::Show() {
    string hint;
    string trouble;
    string notice;
    std::map<size_t, std::pair<string, bool>> items;
    {
        const std::lock_guard guard(FHintLock);
        FQueued = false;
        hint = FHint;
        for (const string& line : {FNote, FTrouble})
            if (!line.isEmpty())
                hint += u'\n' + line;
        trouble = FTrouble;
        items = std::exchange(FItems, {});
        notice = std::exchange(FNotice, {});
    }
    if (!FView)
        return;
    FView->SetAttention(!trouble.isEmpty());
    FView->SetHint(hint);
    if (PopupMenu != nullptr && !items.empty()) {
        for (const auto& [index, item] : items)
            if (index < PopupMenu->Items.size())
                std::tie(PopupMenu->Items[index].Caption, PopupMenu->Items[index].Enabled) = item;
        FView->UpdateMenu(*PopupMenu);
    }
    if (!notice.isEmpty())
        FView->Notify(notice);
}
