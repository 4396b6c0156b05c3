#include "platform/MessageBox.h"

#include "base/Journal.h"

#include <atomic>

namespace {

class THeadlessMessageBoxHost : public TMessageBoxHost {
public:
    int Show(const string& text, const string& caption, int flags) override {
        JournalLine(caption.isEmpty() ? text : caption + QStringLiteral(": ") + text);
        return AnswerAsIfClosed(flags);
    }
};

std::atomic<TMessageBoxHost*> RegisteredHost = nullptr;

} // namespace

TMessageBoxHost& MessageBoxHost() {
    static THeadlessMessageBoxHost headless;
    TMessageBoxHost* host = RegisteredHost.load();
    return host ? *host : headless;
}

void SetMessageBoxHost(TMessageBoxHost* host) {
    RegisteredHost.store(host);
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
