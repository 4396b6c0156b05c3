#pragma once
// The modal message box, shown by whoever has a desktop. Without one the text goes to the journal and the
// box is answered as if the user had closed it.
#include "base/Text.h"

/// The low four bits of a box's flags name its buttons; others its icon, its default button and its place.
enum TMessageBoxFlags : int {
    MB_OK = 0,
    MB_OKCANCEL = 1,
    MB_ABORTRETRYIGNORE = 2,
    MB_YESNOCANCEL = 3,
    MB_YESNO = 4,
    MB_RETRYCANCEL = 5,
    MB_CANCELTRYCONTINUE = 6,
    MB_TYPEMASK = 15,
    MB_ICONERROR = 16,
    MB_ICONQUESTION = 32,
    MB_ICONWARNING = 48,
    MB_ICONINFORMATION = 64,
    MB_DEFBUTTON2 = 0x100, ///< the second button is the default one
    MB_DEFBUTTON3 = 0x200,
    MB_DEFMASK = 0xF00,
    MB_SYSTEMMODAL = 0x1000, ///< above other windows, as MB_TOPMOST
    MB_TOPMOST = 0x40000,
};

enum TMessageBoxAnswer : int {
    IDOK = 1,
    IDCANCEL = 2,
    IDABORT = 3,
    IDRETRY = 4,
    IDIGNORE = 5,
    IDYES = 6,
    IDNO = 7,
    IDTRYAGAIN = 10,
    IDCONTINUE = 11,
};

class TMessageBoxHost {
public:
    virtual ~TMessageBoxHost() = default;
    /// Shows a modal box and returns the code of the button that ended it. Any thread may call it, and it
    /// is held until then.
    virtual int Show(const string& text, const string& caption, int flags) = 0;
    /// Answers the boxes that are open, and from now on every box at once, as if the user had closed it: the
    /// program is stopping. On the main thread.
    virtual void CloseAll() {}
};

/// The registered host, or the one that writes to the journal.
[[nodiscard]] TMessageBoxHost& MessageBoxHost();
/// Not owned; null takes the registered one away. Boxes that are open keep their host.
void SetMessageBoxHost(TMessageBoxHost* host);

/// OK for a lone OK, Cancel where there is one, else No or Abort.
[[nodiscard]] int AnswerAsIfClosed(int flags);
