#include "desktop/DesktopTrayIcon.h"

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QImage>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

#include <utility>

namespace {

QPixmap PixmapOf(const TPicture& picture) {
    QImage image(picture.Width, picture.Height, QImage::Format_ARGB32);
    for (int row = 0; row < picture.Height; ++row)
        std::copy_n(picture.Pixels.begin() + qsizetype(row) * picture.Width, picture.Width,
                    reinterpret_cast<quint32*>(image.scanLine(row)));
    return QPixmap::fromImage(image);
}

QIcon IconOf(const std::vector<TPicture>& sizes) {
    QIcon icon;
    for (const TPicture& picture : sizes)
        icon.addPixmap(PixmapOf(picture));
    return icon;
}

class TDesktopTrayIcon : public TTrayIconView {
public:
    explicit TDesktopTrayIcon(const TTrayIconLook& look)
        : FUsual(IconOf(look.Icon)), FAttention(IconOf(look.AttentionIcon)) {
        FIcon.setIcon(FUsual);
        FIcon.setToolTip(look.Hint);
        if (look.PopupMenu)
            FillMenu(*look.PopupMenu);
        FIcon.setContextMenu(&FMenu);
        QObject::connect(&FIcon, &QSystemTrayIcon::activated, &FIcon,
                         [click = look.OnClick](QSystemTrayIcon::ActivationReason reason) {
                             if (click && reason == QSystemTrayIcon::Trigger)
                                 click();
                         });
        if (look.Animate && look.Icons && look.Icons->Count() > 0)
            StartFrames(*look.Icons, look.AnimateInterval);
        ShowWhenPossible();
    }
    void SetHint(const string& text) override { FIcon.setToolTip(text); }
    void UpdateMenu(const TPopupMenu& menu) override {
        const QList<QAction*> actions = FMenu.actions();
        for (qsizetype i = 0; i < actions.size(); ++i) {
            actions[i]->setText(menu.Items[size_t(i)].Caption);
            actions[i]->setEnabled(menu.Items[size_t(i)].Enabled);
        }
    }
    void SetAttention(bool attention) override {
        if (attention == FAttentive)
            return;
        FAttentive = attention;
        FIcon.setIcon(attention ? FAttention : FUsual);
    }
    void Notify(const string& text) override {
        if (FIcon.isVisible())
            FIcon.showMessage(QCoreApplication::applicationName(), text, QSystemTrayIcon::Warning);
        else
            FNotice = text;
    }

private:
    void FillMenu(const TPopupMenu& menu) {
        for (const TMenuItem& item : menu.Items) {
            QAction* action = FMenu.addAction(item.Caption);
            action->setEnabled(item.Enabled);
            QObject::connect(action, &QAction::triggered, &FMenu, item.OnClick);
        }
    }

    void StartFrames(const TImageList& icons, int intervalMs) {
        QObject::connect(&FFrames, &QTimer::timeout, &FIcon, [this, &icons] {
            if (!FAttentive)
                FIcon.setIcon(QIcon(PixmapOf(icons[FFrame])));
            FFrame = (FFrame + 1) % icons.Count();
        });
        FFrames.start(intervalMs);
    }

    /// At login an agent may be there before the panel is.
    void ShowWhenPossible() {
        constexpr int LookEveryMs = 5000;
        if (QSystemTrayIcon::isSystemTrayAvailable()) {
            FIcon.show();
            if (!FNotice.isEmpty())
                Notify(std::exchange(FNotice, {}));
        } else
            QTimer::singleShot(LookEveryMs, &FIcon, [this] { ShowWhenPossible(); });
    }

    const QIcon FUsual;
    const QIcon FAttention;
    bool FAttentive = false;
    string FNotice; // of before there was an icon
    QMenu FMenu;    // goes after the icon that shows it
    QSystemTrayIcon FIcon;
    QTimer FFrames;
    int FFrame = 0;
};

} // namespace

std::unique_ptr<TTrayIconView> TDesktopTrayIconHost::Show(const TTrayIconLook& look) {
    return std::make_unique<TDesktopTrayIcon>(look);
}
