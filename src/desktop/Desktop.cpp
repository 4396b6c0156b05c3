#include "desktop/Desktop.h"

#include "agent/RunHost.h"
#include "base/Journal.h"
#include "desktop/DesktopFileDialog.h"
#include "desktop/DesktopMessageBox.h"
#include "desktop/DesktopPasswordPrompt.h"
#include "desktop/DesktopTrayIcon.h"
#include "desktop/ScriptEditorDialog.h"
#include "platform/OpenPath.h"

#include <QApplication>
#include <QDesktopServices>
#include <QIcon>
#include <QSessionManager>
#include <QUrl>

#include <clocale>

namespace {

constexpr char NoPlatform[] = "minimal"; // paints nowhere

bool DisplayNamed() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

std::unique_ptr<QCoreApplication> MakeWindowedApplication(const string& program, int& argc, char** argv) {
    QGuiApplication::setDesktopFileName(program);
    auto application = std::make_unique<QApplication>(argc, argv);
    QGuiApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("morvane-agent")));
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

/// The words that the application object is given and keeps: none of the user's, who has no options there.
struct TDesktop::TCommandLine {
    /// A display that nobody serves would end the program, if there were nothing to fall back on. A platform
    /// that the user's environment names counts as it stands.
    explicit TCommandLine(const string& program) : Program(program.toStdString()) {
        if (DisplayNamed() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            Count = 3;
    }
    std::string Platforms = std::string("xcb;wayland;") + NoPlatform;
    std::string Program;
    std::string Option = "-platform";
    char* Words[4] = {Program.data(), Option.data(), Platforms.data(), nullptr};
    int Count = 1;
};

namespace {

class TDesktopOpenPathHost : public TOpenPathHost {
public:
    void Open(const string& path) override {
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
            JournalLine(QStringLiteral("The desktop has no program to show \"%1\" with.").arg(path));
    }
};

} // namespace

struct TDesktop::THosts {
    THosts() {
        SetOpenPathHost(&Paths);
        SetMessageBoxHost(&Boxes);
        SetTrayIconHost(&Icons);
        SetPasswordPrompt(&Passwords);
        SetFileDialogHost(&Files);
        SetScriptEditorHost(&Scripts);
    }
    ~THosts() {
        SetScriptEditorHost(nullptr);
        SetFileDialogHost(nullptr);
        SetPasswordPrompt(nullptr);
        SetTrayIconHost(nullptr);
        SetMessageBoxHost(nullptr);
        SetOpenPathHost(nullptr);
    }
    TDesktopOpenPathHost Paths;
    TDesktopMessageBoxHost Boxes;
    TDesktopTrayIconHost Icons;
    TDesktopPasswordPrompt Passwords;
    TDesktopFileDialogHost Files;
    TDesktopScriptEditorHost Scripts;
};

TDesktop::TDesktop(const string& program) : FCommandLine(std::make_unique<TCommandLine>(program)) {
    int& count = FCommandLine->Count;
    char** words = FCommandLine->Words;
    FApplication = DisplayNamed() ? MakeWindowedApplication(program, count, words)
                                  : std::make_unique<QCoreApplication>(count, words);
    std::setlocale(LC_NUMERIC, "C"); // the object above has set the user's; numbers in files know one form
    QCoreApplication::setApplicationName(ApplicationTitle());
    if (DisplayNamed() && QGuiApplication::platformName() != QLatin1String(NoPlatform))
        FHosts = std::make_unique<THosts>();
}

TDesktop::~TDesktop() = default;
