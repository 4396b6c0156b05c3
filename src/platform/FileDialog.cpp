#include "platform/FileDialog.h"

#include "base/Journal.h"
#include "platform/HostSlot.h"

namespace {

class THeadlessFileDialogHost : public TFileDialogHost {
public:
    bool Execute(TFileDialog& /*dialog*/) override {
        JournalLine(QStringLiteral("A file was asked for, and there is no desktop to choose one on."));
        return false;
    }
};

THostSlot<TFileDialogHost, THeadlessFileDialogHost> Slot;

} // namespace

TFileDialogHost& FileDialogHost() {
    return Slot.Get();
}

void SetFileDialogHost(TFileDialogHost* host) {
    Slot.Set(host);
}
