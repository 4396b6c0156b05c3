#pragma once
// The editor's window on a desktop that paints into memory, with real events.
#include "RealInput.h"
#include "desktop/Desktop.h"
#include "desktop/memo/MemoWidget.h"
#include "editor/style/JSMemoStyler.h"
#include "testing/MemoText.h"

#include <QApplication>

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
        (void)QTest::qWaitForWindowActive(FWidget.get(), RealInput::Patience);
    }

    void Given(const QString& text) { GiveMarked(Memo(), text); }
    [[nodiscard]] std::string Shown() { return Marked(Memo()); }
    /// Keys by their names between blanks, such as "Ctrl+Left Ins"; texts to type stand in single quotes.
    void Keys(const QString& keys) {
        for (const QString& key : keys.split(' ', Qt::SkipEmptyParts)) {
            if (key.startsWith('\'')) {
                Type(key.mid(1).chopped(1).toUtf8().constData());
                continue;
            }
            const QKeyCombination combination = QKeySequence(key)[0];
            const bool back = combination == (Qt::SHIFT | Qt::Key_Tab); // as desktops report it
            Key(back ? Qt::Key_Backtab : combination.key(), combination.keyboardModifiers());
        }
    }
    [[nodiscard]] TAdvMemo& Memo() { return FWidget->Memo(); }
    [[nodiscard]] std::string Text() { return Memo().Text().toStdString(); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        RealInput::Click(FWidget.get(), key, modifiers);
    }
    void Type(const char* text) { RealInput::Type(FWidget.get(), QString::fromUtf8(text)); }

    /// A place in the middle of the row, this many pixels right of a column's left edge.
    [[nodiscard]] QPoint At(int column, int row, int dx = 0) {
        const TMemoGeometry& geometry = FWidget->Geometry();
        return {geometry.XOf(row, column) + dx, geometry.YOf(row) + geometry.LineHeight() / 2};
    }
    void UndoAll() {
        while (Memo().CanUndo())
            Keys("Ctrl+Z");
    }

private:
    struct TOffscreen {
        TOffscreen() {
            RealInput::ChoosePlatform();
            Desktop = std::make_unique<TDesktop>();
        }
        std::unique_ptr<TDesktop> Desktop;
    } FOffscreen;

protected:
    TAdvJSMemoStyler FStyler;
    std::unique_ptr<TMemoWidget> FWidget;
};
