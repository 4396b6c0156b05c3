#include "platform/OpenPath.h"

#include "base/Journal.h"
#include "platform/HostSlot.h"

namespace {

class TNamingHost : public TOpenPathHost {
public:
    void Open(const string& path) override {
        JournalLine(QStringLiteral("There is no desktop to show \"%1\" on.").arg(path));
    }
};

THostSlot<TOpenPathHost, TNamingHost> Slot;

} // namespace

TOpenPathHost& OpenPathHost() {
    return Slot.Get();
}

void SetOpenPathHost(TOpenPathHost* host) {
    Slot.Set(host);
}
