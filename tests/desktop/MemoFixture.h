#pragma once
// The editor's window on a desktop that paints into memory, with real events.
#include "RealInput.h"
#include "desktop/Desktop.h"
#include "desktop/memo/MemoWidget.h"
#include "editor/style/JSMemoStyler.h"

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

    /// Lines between line feeds; the bar is the caret, an arrow up the other end of the selection.
    void Given(const QString& text) {
        Memo().SetText(QString(text).remove('|').remove('^') + '\n');
        TSelectionRange range;
        const QStringList lines = text.split('\n');
        for (int y = 0; y < lines.size(); ++y) {
            if (const qsizetype x = QString(lines[y]).remove('^').indexOf('|'); x >= 0)
                range.EndX = int(x), range.EndY = y;
            if (const qsizetype x = QString(lines[y]).remove('|').indexOf('^'); x >= 0)
                range.StartX = int(x), range.StartY = y;
        }
        Memo().Caret().MoveTo(range.EndX, range.EndY);
        Memo().ClearSelection();
        if (text.contains('^'))
            Memo().Selection().Take(range, Memo().Settings.FSelectionMode == smBlock);
    }
    /// What Given takes. A bar within a pair would show.
    [[nodiscard]] std::string Shown() {
        const TSelectionRange range = Memo().Selection().Range();
        const TMemoCaret& caret = Memo().Caret();
        QStringList lines;
        for (int y = 0; y < Memo().Lines().Count(); ++y) {
            QString line = Memo().Lines()[y];
            const bool start = !Memo().Selection().IsEmpty() && y == range.StartY;
            const qsizetype bar = y == caret.Y() ? caret.X() : -1;
            if (bar >= 0)
                line.insert(bar, '|');
            if (start)
                line.insert(range.StartX + (bar >= 0 && bar < range.StartX ? 1 : 0), '^');
            lines += line;
        }
        return lines.join('\n').toStdString();
    }
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
