#pragma once
// The vocabulary of the desktop's tests: a desktop in memory, and what is done with a window once it is
// shown.
#include "RealInput.h"
#include "desktop/Desktop.h"
#include "platform/MessagePump.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

/// A desktop that paints into memory, and an event loop.
class DesktopTest : public testing::Test {
public:
    /// Calls with the window of that class once one is shown.
    template <class TWindow> static void OnShown(const std::function<void(TWindow&)>& call) {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* window = dynamic_cast<TWindow*>(widget); window && window->isVisible()) {
                call(*window);
                return;
            }
        QTimer::singleShot(1, qApp, [call] { OnShown(call); });
    }

protected:
    DesktopTest() {
        RealInput::ChoosePlatform();
        FDesktop = std::make_unique<TDesktop>();
        FPump = std::make_unique<TMessagePump>();
    }

    std::unique_ptr<TDesktop> FDesktop;
    std::unique_ptr<TMessagePump> FPump;
};
