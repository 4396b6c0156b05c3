#pragma once
// Tray icons on the desktop. Where there is no tray area yet, the icon appears once there is one.
#include "platform/TrayIcon.h"

class TDesktopTrayIconHost : public TTrayIconHost {
public:
    [[nodiscard]] std::unique_ptr<TTrayIconView> Show(const TTrayIconLook& look) override;
};
