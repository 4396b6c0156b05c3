#pragma once
// The application object, with the user's desktop where there is one.
#include <memory>

class QCoreApplication;

/// Made on the main thread, once, before anything that needs an application object. With DISPLAY or
/// WAYLAND_DISPLAY it registers the desktop's tray icons and message boxes; where neither is set, or nobody
/// answers there, the program goes without.
class TDesktop {
public:
    TDesktop();
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
