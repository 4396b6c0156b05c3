#pragma once
// TTrayIcon: a picture in the desktop's tray area, with a hint and a menu. Without a desktop it is there all
// the same and shows nothing.
#include "base/Component.h"
#include "platform/Picture.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>

class TMessageQueue;

struct TMenuItem {
    string Caption;
    std::function<void()> OnClick; ///< on the main thread
    bool Enabled = true;
};

struct TPopupMenu {
    std::vector<TMenuItem> Items;
};

/// A tray icon as a desktop shows it; gone with this object.
class TTrayIconView {
public:
    virtual ~TTrayIconView() = default;
    virtual void SetHint(const string& text) = 0;
    /// The menu's items have changed, in all but their number.
    virtual void UpdateMenu(const TPopupMenu& menu) = 0;
    /// Shows the picture that asks for attention, or the usual one.
    virtual void SetAttention(bool attention) = 0;
    /// A message beside the icon, as the desktop shows such things.
    virtual void Notify(const string& text) = 0;
};

/// What an icon looks like. What it points to outlives the view.
struct TTrayIconLook {
    const std::vector<TPicture>& Icon;          ///< one picture in several sizes
    const std::vector<TPicture>& AttentionIcon; ///< likewise
    const TImageList* Icons;                    ///< frames, shown in turn while animated
    bool Animate;
    int AnimateInterval; ///< milliseconds a frame
    const TPopupMenu* PopupMenu;
    string Hint;
    std::function<void()> OnClick; ///< on the icon itself
};

/// Whoever has a tray area. Called on the main thread.
class TTrayIconHost {
public:
    virtual ~TTrayIconHost() = default;
    [[nodiscard]] virtual std::unique_ptr<TTrayIconView> Show(const TTrayIconLook& look) = 0;
};

/// Null without a desktop.
[[nodiscard]] TTrayIconHost* TrayIconHost();
/// Not owned; null takes the registered one away. On the main thread, while no icon is visible.
void SetTrayIconHost(TTrayIconHost* host);

/// Belongs to the thread that made it; SetHint, SetNote, SetItem, Hint and SetTrouble may be called from any.
class TTrayIcon : public TComponent {
    Q_OBJECT
public:
    explicit TTrayIcon(TComponent* owner);
    ~TTrayIcon() override;

    PUBLISHED(bool, Animate, FAnimate) = false;
    PUBLISHED(int, AnimateInterval, FAnimateInterval) = 1000;
    std::vector<TPicture> Icon;
    std::vector<TPicture> AttentionIcon;
    const TImageList* Icons = nullptr; ///< not owned, as the next
    TPopupMenu* PopupMenu = nullptr;
    std::function<void()> OnClick; ///< on the main thread

    [[nodiscard]] bool Visible() const { return FVisible; }
    /// What was set before counts; only the hint follows later changes.
    void SetVisible(bool visible);

    [[nodiscard]] string Hint() const;
    /// Never waits. The hint is shown soon after; of several in a row perhaps only the last one.
    void SetHint(const string& text);
    /// A line that stands below the hint.
    void SetNote(const string& text);
    /// The caption of an item of the menu, and whether it can be chosen.
    void SetItem(size_t index, const string& caption, bool enabled);
    /// What somebody should look at stands below the hint, and the icon asks for attention, until it is empty
    /// again. `notice` is shown once; empty shows none. Never waits either.
    void SetTrouble(const string& text, const string& notice);

private:
    void QueueShowing();
    void Show();

    const std::shared_ptr<TMessageQueue> FQueue;
    const std::shared_ptr<bool> FAlive; ///< for calls that are still queued when the icon goes
    bool FVisible = false;
    std::unique_ptr<TTrayIconView> FView;
    mutable std::mutex FHintLock; ///< of what follows
    string FHint;
    string FNote;
    string FTrouble;
    std::map<size_t, std::pair<string, bool>> FItems; ///< yet to be shown
    string FNotice;                                   ///< yet to be shown
    bool FQueued = false;
};
