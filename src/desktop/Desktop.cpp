#include "desktop/Desktop.h"

#include "agent/RunHost.h"
#include "desktop/DesktopMessageBox.h"
#include "desktop/DesktopTrayIcon.h"

#include <QApplication>
#include <QSessionManager>

#include <clocale>

namespace {

constexpr char PlatformVariable[] = "QT_QPA_PLATFORM";
constexpr char NoPlatform[] = "minimal"; // paints nowhere

bool DisplayNamed() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

/// A display that nobody serves would end the program, if there were nothing to fall back on. A platform that
/// the user has named counts as it stands.
std::unique_ptr<QCoreApplication> MakeWindowedApplication(int& argc, char** argv) {
    const bool named = qEnvironmentVariableIsSet(PlatformVariable);
    if (!named)
        qputenv(PlatformVariable, QByteArray("xcb;wayland;") + NoPlatform);
    QGuiApplication::setDesktopFileName(QStringLiteral("morvane-agent"));
    auto application = std::make_unique<QApplication>(argc, argv);
    if (!named)
        qunsetenv(PlatformVariable); // programs that scripts start choose for themselves
    QGuiApplication::setQuitOnLastWindowClosed(/*quit=*/false);
    // The autostart entry brings the agent back at the next login; a session that did so too would start two.
    const auto neverRestart = [](QSessionManager& session) {
        session.setRestartHint(QSessionManager::RestartNever);
    };
    QObject::connect(application.get(), &QGuiApplication::commitDataRequest, neverRestart);
    QObject::connect(application.get(), &QGuiApplication::saveStateRequest, neverRestart);
    return application;
}

} // namespace

struct TDesktop::THosts {
    THosts() {
        SetMessageBoxHost(&Boxes);
        SetTrayIconHost(&Icons);
    }
    ~THosts() {
        SetTrayIconHost(nullptr);
        SetMessageBoxHost(nullptr);
    }
    TDesktopMessageBoxHost Boxes;
    TDesktopTrayIconHost Icons;
};

TDesktop::TDesktop(int& argc, char** argv)
    : FApplication(DisplayNamed() ? MakeWindowedApplication(argc, argv)
                                  : std::make_unique<QCoreApplication>(argc, argv)) {
    std::setlocale(LC_NUMERIC, "C"); // the object above has set the user's; numbers in files know one form
    QCoreApplication::setApplicationName(ApplicationTitle());
    if (DisplayNamed() && QGuiApplication::platformName() != QLatin1String(NoPlatform))
        FHosts = std::make_unique<THosts>();
}

TDesktop::~TDesktop() = default;
