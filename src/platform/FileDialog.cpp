#include "platform/FileDialog.h"

#include "base/Journal.h"

#include <atomic>

namespace {

class THeadlessFileDialogHost : public TFileDialogHost {
public:
    bool Execute(TFileDialog& /*dialog*/) override {
        JournalLine(QStringLiteral("A file was asked for, and there is no desktop to choose one on."));
        return false;
    }
};

std::atomic<TFileDialogHost*> RegisteredHost = nullptr;

} // namespace

TFileDialogHost& FileDialogHost() {
    static THeadlessFileDialogHost headless;
    TFileDialogHost* host = RegisteredHost.load();
    return host ? *host : headless;
}

void SetFileDialogHost(TFileDialogHost* host) {
    RegisteredHost.store(host);
}
