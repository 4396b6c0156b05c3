#include "desktop/memo/input/MemoKeyboard.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/input/MemoMouse.h"
#include "editor/edit/SurrogatePairs.h"

#include <QKeyEvent>

#include <algorithm>

TShiftState ShiftStateOf(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? unsigned(ssShift) : 0) |
           (modifiers & Qt::ControlModifier ? unsigned(ssCtrl) : 0) |
           (modifiers & Qt::AltModifier ? unsigned(ssAlt) : 0);
}

namespace {

bool Has(const QKeyEvent& event, Qt::KeyboardModifier modifier) {
    return event.modifiers().testFlag(modifier);
}

/// The characters to be typed. Some keyboards report AltGr as Ctrl and Alt together; letters and digits with
/// those are shortcuts even so.
string TypedText(const QKeyEvent& event) {
    const auto printable = [](QChar c) { return c.unicode() >= 32 && c.unicode() != 127; };
    const auto plain = [](QChar c) { return c.unicode() < 128 && c.isLetterOrNumber(); };
    string text = event.text();
    const bool ctrl = Has(event, Qt::ControlModifier);
    const bool alt = Has(event, Qt::AltModifier);
    if (text.isEmpty() || ctrl != alt || Has(event, Qt::MetaModifier) ||
        !std::all_of(text.begin(), text.end(), printable) || (ctrl && (plain(text[0]) || text == " ")))
        return {};
    return text;
}

/// 0 for keys without one.
char16_t ControlCharacter(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Backspace:
        return keyBackspaceChar;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return keyTabChar;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return keyEnterChar;
    case Qt::Key_Escape:
        return keyEscapeChar;
    case Qt::Key_A:
    case Qt::Key_C:
    case Qt::Key_V:
    case Qt::Key_X:
        return Has(event, Qt::ControlModifier) ? char16_t(event.key() - Qt::Key_A + 1) : u'\0';
    default:
        return 0;
    }
}

/// Keys with a meaning in the editor besides typing.
bool IsEditorKey(const QKeyEvent& event) {
    const bool ctrl = Has(event, Qt::ControlModifier);
    if (Has(event, Qt::MetaModifier))
        return false;
    if (Has(event, Qt::AltModifier))
        return event.key() == Qt::Key_Backspace && !ctrl;
    switch (event.key()) {
    case Qt::Key_A:
    case Qt::Key_C:
    case Qt::Key_F:
    case Qt::Key_H:
    case Qt::Key_V:
    case Qt::Key_X:
    case Qt::Key_Y:
    case Qt::Key_Z:
    case Qt::Key_Space:
        return ctrl;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return !ctrl;
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Backspace:
    case Qt::Key_Insert:
    case Qt::Key_Delete:
        return true;
    default:
        return event.key() >= Qt::Key_Home && event.key() <= Qt::Key_PageDown;
    }
}

bool IsTab(const QKeyEvent& event) {
    return event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
}

bool IsModifier(const QKeyEvent& event) {
    return event.key() >= Qt::Key_Shift && event.key() <= Qt::Key_Alt;
}

/// Points to add to the size of the text; the font's own size again for Ctrl+0.
enum class TZoomKey { None, Larger, Smaller, Back };

TZoomKey ZoomKeyOf(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    if (modifiers != Qt::ControlModifier)
        return TZoomKey::None;
    switch (event.key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: // plus where that is a shifted key
        return TZoomKey::Larger;
    case Qt::Key_Minus:
        return TZoomKey::Smaller;
    case Qt::Key_0:
        return TZoomKey::Back;
    default:
        return TZoomKey::None;
    }
}

} // namespace

bool TMemoKeyboard::Wants(const QKeyEvent& event) const {
    return IsEditorKey(event) || !TypedText(event).isEmpty() || ZoomKeyOf(event) != TZoomKey::None ||
           (IsTab(event) && Has(event, Qt::ControlModifier) && !Has(event, Qt::AltModifier));
}

void TMemoKeyboard::Press(QKeyEvent& event) {
    if (Leave(event) || Zoom(event))
        return event.accept();
    if (IsEditorKey(event) || !TypedText(event).isEmpty()) {
        FWidget.CancelPreedit();
        Send(event);
        FWidget.Mouse().KeyServed();
        return event.accept();
    }
    // Whoever listens for keys hears of these too, and held modifiers matter to hints. With Alt they belong
    // to menus and mnemonics.
    if (IsModifier(event) || !Has(event, Qt::AltModifier))
        FWidget.Memo().KeyDown(event.key(), ShiftStateOf(event.modifiers()));
    event.ignore();
}

void TMemoKeyboard::Send(const QKeyEvent& event) {
    const string text = IsEditorKey(event) ? string() : TypedText(event);
    // Modifiers that were needed for a character are no part of its key.
    const TShiftState shift = ShiftStateOf(event.modifiers()) & (text.isEmpty() ? ~0U : unsigned(ssShift));
    FWidget.Pairs().Key(event.key(), shift, Has(event, Qt::AltModifier) ? u'\0' : ControlCharacter(event));
    FWidget.Pairs().Type(text);
}

bool TMemoKeyboard::Zoom(const QKeyEvent& event) {
    const TZoomKey key = ZoomKeyOf(event);
    if (key != TZoomKey::None)
        FWidget.SetZoom(key == TZoomKey::Back ? 0 : FWidget.Zoom() + (key == TZoomKey::Larger ? 1 : -1));
    return key != TZoomKey::None;
}

bool TMemoKeyboard::Leave(const QKeyEvent& event) {
    if (!IsTab(event) || !Has(event, Qt::ControlModifier) || Has(event, Qt::AltModifier))
        return false;
    const bool back = event.key() == Qt::Key_Backtab || Has(event, Qt::ShiftModifier);
    return back ? FWidget.FocusPrevious() : FWidget.FocusNext();
}
