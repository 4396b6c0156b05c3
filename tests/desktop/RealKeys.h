#pragma once
// Keys by way of the display's server, as a keyboard sends them. Tests that send their keys through this run
// on the platform that paints into memory, with events made up, and once more on a display of their own
// (MORVANE_REAL_KEYS).
#include "base/Text.h"

#include <QApplication>
#include <QKeyEvent>
#include <QProcess>
#include <QTest>

namespace RealKeys {

[[nodiscard]] inline bool On() {
    return qEnvironmentVariableIsSet("MORVANE_REAL_KEYS");
}

/// To be called before there is an application.
inline void ChoosePlatform() {
    if (On())
        return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DISPLAY", ":0");
}

/// Counts what arrives.
class TArrivals : public QObject {
public:
    TArrivals() { qApp->installEventFilter(this); }
    int Releases = 0;

    bool eventFilter(QObject* watched, QEvent* event) override {
        // Each arrives at the window first, and from there at the widget with the focus.
        if (event->type() == QEvent::KeyRelease && watched->isWindowType())
            ++Releases;
        return false;
    }
};

inline void Run(const QStringList& words, int keys) {
    TArrivals arrivals;
    QProcess program;
    program.start(QStringLiteral("xdotool"), words);
    QVERIFY2(QTest::qWaitFor([&] { return program.state() == QProcess::NotRunning; }), "xdotool");
    // A key may close the window that its release would have come to.
    [[maybe_unused]] const bool all = QTest::qWaitFor([&] { return arrivals.Releases >= keys; }, 1000);
}

[[nodiscard]] inline QString NameOf(Qt::Key key) {
    static const QHash<int, const char*> names{
        {Qt::Key_Return, "Return"}, {Qt::Key_Enter, "KP_Enter"}, {Qt::Key_Backspace, "BackSpace"},
        {Qt::Key_Delete, "Delete"}, {Qt::Key_Insert, "Insert"},  {Qt::Key_Home, "Home"},
        {Qt::Key_End, "End"},       {Qt::Key_PageUp, "Prior"},   {Qt::Key_PageDown, "Next"},
        {Qt::Key_Left, "Left"},     {Qt::Key_Right, "Right"},    {Qt::Key_Up, "Up"},
        {Qt::Key_Down, "Down"},     {Qt::Key_Tab, "Tab"},        {Qt::Key_Backtab, "Tab"},
        {Qt::Key_Escape, "Escape"}, {Qt::Key_Space, "space"},    {Qt::Key_Slash, "slash"},
        {Qt::Key_Plus, "plus"},     {Qt::Key_Equal, "equal"},    {Qt::Key_Minus, "minus"},
        {Qt::Key_Menu, "Menu"},
    };
    if (const auto found = names.constFind(key); found != names.cend())
        return QString::fromLatin1(*found);
    return QKeySequence(key).toString().toLower();
}

/// A key with modifiers, to the window with the focus.
inline void Click(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    if (!On()) {
        QTest::keyClick(widget, key, modifiers);
        return;
    }
    QStringList names;
    if (modifiers & Qt::ControlModifier)
        names += QStringLiteral("ctrl");
    if (modifiers & Qt::AltModifier)
        names += QStringLiteral("alt");
    if (modifiers & Qt::ShiftModifier)
        names += QStringLiteral("shift");
    names += NameOf(key);
    Run({QStringLiteral("key"), names.join(u'+')}, int(names.size()));
}

/// Typed text. What the keyboard of the display doesn't have comes as events that are made up.
inline void Type(QWidget* widget, const QString& text) {
    const auto plain = [](QChar c) { return c.unicode() >= 32 && c.unicode() < 127; };
    if (On() && std::all_of(text.begin(), text.end(), plain)) {
        Run({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("1"), QStringLiteral("--"),
             text},
            int(text.size()));
        return;
    }
    for (const uint code : text.toUcs4()) {
        const QString typed = QString::fromUcs4(reinterpret_cast<const char32_t*>(&code), 1);
        QKeyEvent event(QEvent::KeyPress, code < 128 ? int(QChar(code).toUpper().unicode()) : 0,
                        Qt::NoModifier, typed);
        QApplication::sendEvent(widget, &event);
    }
}

} // namespace RealKeys
