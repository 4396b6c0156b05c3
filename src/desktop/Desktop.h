#pragma once
// The application object, with the user's desktop where there is one.
#include "base/Text.h"

#include <memory>

class QCoreApplication;

/// Made on the main thread, once, before anything that needs an application object. With DISPLAY or
/// WAYLAND_DISPLAY it registers the desktop's tray icons, message boxes and dialogs; where neither is set, or
/// nobody answers there, the program goes without.
class TDesktop {
public:
    /// `program` is the name that a desktop entry of the program has (packaging/).
    explicit TDesktop(const string& program = QStringLiteral("morvane-agent"));
    ~TDesktop();
    TDesktop(const TDesktop&) = delete;
    TDesktop& operator=(const TDesktop&) = delete;

    /// Whether windows can be shown.
    [[nodiscard]] bool IsThere() const { return FHosts != nullptr; }

private:
    struct TCommandLine;
    struct THosts;
    const std::unique_ptr<TCommandLine> FCommandLine;
    std::unique_ptr<QCoreApplication> FApplication;
    std::unique_ptr<THosts> FHosts;
};
