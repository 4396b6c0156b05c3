#include "platform/MessageBox.h"

#include "base/Journal.h"
#include "platform/HostSlot.h"

namespace {

class THeadlessMessageBoxHost : public TMessageBoxHost {
public:
    int Show(const string& text, const string& caption, int flags) override {
        JournalLine(caption.isEmpty() ? text : caption + QStringLiteral(": ") + text);
        return AnswerAsIfClosed(flags);
    }
};

THostSlot<TMessageBoxHost, THeadlessMessageBoxHost> Slot;

} // namespace

TMessageBoxHost& MessageBoxHost() {
    return Slot.Get();
}

void SetMessageBoxHost(TMessageBoxHost* host) {
    Slot.Set(host);
}

int AnswerAsIfClosed(int flags) {
    switch (flags & MB_TYPEMASK) {
    case MB_OKCANCEL:
    case MB_YESNOCANCEL:
    case MB_RETRYCANCEL:
    case MB_CANCELTRYCONTINUE:
        return IDCANCEL;
    case MB_ABORTRETRYIGNORE:
        return IDABORT;
    case MB_YESNO:
        return IDNO;
    default:
        return IDOK;
    }
}
