#pragma once
// The editor's window on a desktop that paints into memory, with real events.
#include "desktop/Desktop.h"
#include "desktop/memo/MemoWidget.h"
#include "editor/JSMemoStyler.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

class MemoWindowTest : public testing::Test {
protected:
    MemoWindowTest() {
        FWidget = std::make_unique<TMemoWidget>();
        FWidget->Memo().SetStyler(&FStyler);
        FWidget->resize(640, 400);
        FWidget->show();
        FWidget->activateWindow();
        FWidget->setFocus();
        QApplication::processEvents();
    }

    [[nodiscard]] TAdvMemo& Memo() { return FWidget->Memo(); }
    [[nodiscard]] std::string Text() { return Memo().Text().toStdString(); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(FWidget.get(), key, modifiers);
    }
    void Type(const char* text) { QTest::keyClicks(FWidget.get(), QString::fromUtf8(text)); }

private:
    struct TOffscreen {
        TOffscreen() {
            qputenv("QT_QPA_PLATFORM", "offscreen");
            qputenv("DISPLAY", ":0");
            Desktop = std::make_unique<TDesktop>();
        }
        std::unique_ptr<TDesktop> Desktop;
    } FOffscreen;

protected:
    TAdvJSMemoStyler FStyler;
    std::unique_ptr<TMemoWidget> FWidget;
};
