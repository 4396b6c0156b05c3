#pragma once
// Keys and the mouse by way of the display's server, as devices send them. Tests that send their input
// through this run on the platform that paints into memory, with events made up, and once more on a display
// of their own (MORVANE_REAL_INPUT).
#include "base/Text.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QProcess>
#include <QTest>

#include <algorithm>
#include <functional>

namespace RealInput {

[[nodiscard]] inline bool On() {
    return qEnvironmentVariableIsSet("MORVANE_REAL_INPUT");
}

/// To be called before there is an application.
inline void ChoosePlatform() {
    if (On())
        return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DISPLAY", ":0");
}

constexpr int Patience = 60'000; // milliseconds; a busy machine gets anything done in that time

/// Runs the event loop until `done`; false if it never is.
[[nodiscard]] inline bool Await(const std::function<bool()>& done) {
    return QTest::qWaitFor(done, Patience);
}

/// Counts the events of a kind that arrive.
class TArrivals : public QObject {
public:
    explicit TArrivals(const QList<QEvent::Type>& types) : FTypes(types) { qApp->installEventFilter(this); }
    int Count = 0;
    bool WindowWent = false;

    bool eventFilter(QObject* watched, QEvent* event) override {
        WindowWent |= watched->isWindowType() && event->type() == QEvent::Hide;
        // Each arrives at the window first, and from there at the widget that it is for.
        if (FTypes.contains(event->type()) && watched->isWindowType())
            ++Count;
        return false;
    }

private:
    const QList<QEvent::Type> FTypes;
};

inline void Run(const QStringList& words, const QList<QEvent::Type>& types, int count) {
    TArrivals arrivals(types);
    QProcess program;
    program.start(QStringLiteral("xdotool"), words);
    QVERIFY2(Await([&] { return program.state() == QProcess::NotRunning; }), "xdotool");
    const auto all = [&] { return arrivals.Count >= count; };
    if (!Await([&] { return all() || arrivals.WindowWent; }) || all())
        return;
    // A key may close the window that its release would have come to.
    constexpr int Longest = 3000; // milliseconds
    [[maybe_unused]] const bool came = QTest::qWaitFor(all, Longest);
}

[[nodiscard]] inline QString NameOf(Qt::Key key) {
    static const QHash<int, const char*> names{
        {Qt::Key_Return, "Return"},
        {Qt::Key_Enter, "KP_Enter"},
        {Qt::Key_Backspace, "BackSpace"},
        {Qt::Key_Delete, "Delete"},
        {Qt::Key_Insert, "Insert"},
        {Qt::Key_Home, "Home"},
        {Qt::Key_End, "End"},
        {Qt::Key_PageUp, "Prior"},
        {Qt::Key_PageDown, "Next"},
        {Qt::Key_Left, "Left"},
        {Qt::Key_Right, "Right"},
        {Qt::Key_Up, "Up"},
        {Qt::Key_Down, "Down"},
        {Qt::Key_Tab, "Tab"},
        {Qt::Key_Backtab, "Tab"},
        {Qt::Key_Escape, "Escape"},
        {Qt::Key_Space, "space"},
        {Qt::Key_Slash, "slash"},
        {Qt::Key_Plus, "plus"},
        {Qt::Key_Equal, "equal"},
        {Qt::Key_Minus, "minus"},
        {Qt::Key_Menu, "Menu"},
        {Qt::Key_Semicolon, "semicolon"},
    };
    if (const auto found = names.constFind(key); found != names.cend())
        return QString::fromLatin1(*found);
    return QKeySequence(key).toString().toLower();
}

[[nodiscard]] inline QStringList NamesOf(Qt::KeyboardModifiers modifiers) {
    QStringList names;
    if (modifiers & Qt::ControlModifier)
        names += QStringLiteral("ctrl");
    if (modifiers & Qt::AltModifier)
        names += QStringLiteral("alt");
    if (modifiers & Qt::ShiftModifier)
        names += QStringLiteral("shift");
    return names;
}

/// A key with modifiers, to the window with the focus.
inline void Click(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    if (!On()) {
        QTest::keyClick(widget, key, modifiers);
        return;
    }
    const QStringList names = NamesOf(modifiers) + QStringList(NameOf(key));
    Run({QStringLiteral("key"), names.join(u'+')}, {QEvent::KeyRelease}, int(names.size()));
}

/// Typed text. What the keyboard of the display doesn't have comes as events that are made up.
inline void Type(QWidget* widget, const QString& text) {
    const auto plain = [](QChar c) { return c.unicode() >= 32 && c.unicode() < 127; };
    const auto shifted = [](QChar c) {
        return c.isUpper() || QStringView(u"~!@#$%^&*()_+{}|:\"<>?").contains(c);
    };
    if (On() && std::all_of(text.begin(), text.end(), plain)) {
        const auto shifts = std::count_if(text.begin(), text.end(), shifted); // a key of its own each time
        Run({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("1"), QStringLiteral("--"),
             text},
            {QEvent::KeyRelease}, int(text.size() + shifts));
        return;
    }
    for (const uint code : text.toUcs4()) {
        const QString typed = QString::fromUcs4(reinterpret_cast<const char32_t*>(&code), 1);
        QKeyEvent event(QEvent::KeyPress, code < 128 ? int(QChar(code).toUpper().unicode()) : 0,
                        Qt::NoModifier, typed);
        QApplication::sendEvent(widget, &event);
    }
}

/// The mouse goes to a place of the screen and its button goes down or up there. What is no press and no
/// release is a move alone.
inline void Mouse(QEvent::Type type, QPoint place, Qt::KeyboardModifiers modifiers, Qt::MouseButton button) {
    static bool down = false;
    const bool presses = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
    const bool releases = type == QEvent::MouseButtonRelease;
    QStringList words{QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())};
    if (releases && !std::exchange(down, false))
        return;
    if (!presses && !releases) {
        Run(words, {QEvent::MouseMove}, QCursor::pos() == place ? 0 : 1);
        return;
    }
    down = presses;
    const QStringList held = NamesOf(modifiers);
    for (const QString& key : held)
        words += {QStringLiteral("keydown"), key};
    words += {QString::fromLatin1(presses ? "mousedown" : "mouseup"),
              QString::number(button == Qt::MiddleButton ? 2 : 1)};
    for (const QString& key : held)
        words += {QStringLiteral("keyup"), key};
    Run(words, {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}, 1);
}

} // namespace RealInput
