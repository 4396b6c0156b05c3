// The mouse in the editor's window: clicks, drags, drops, wheel and menu.
#include "MemoFixture.h"

#include "desktop/memo/input/MemoClipboard.h"
#include "desktop/memo/input/MemoMouse.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>

namespace {

class MemoMouseTest : public MemoWindowTest {
protected:
    [[nodiscard]] QWidget* Viewport() { return FWidget->viewport(); }
    void Mouse(QEvent::Type type, QPoint pos, Qt::KeyboardModifiers modifiers = {},
               Qt::MouseButton button = Qt::LeftButton) {
        if (RealInput::On()) {
            RealInput::Mouse(type, Viewport()->mapToGlobal(pos), modifiers, button);
            return;
        }
        const bool move = type == QEvent::MouseMove;
        QMouseEvent event(type, pos, Viewport()->mapToGlobal(pos), move ? Qt::NoButton : button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : button, modifiers);
        QApplication::sendEvent(Viewport(), &event);
    }
    void Press(QPoint pos, Qt::KeyboardModifiers modifiers = {}) {
        Mouse(QEvent::MouseButtonPress, pos, modifiers);
    }
    void MoveTo(QPoint pos) { Mouse(QEvent::MouseMove, pos); }
    void Release(QPoint pos) { Mouse(QEvent::MouseButtonRelease, pos); }
    void Click(QPoint pos, Qt::KeyboardModifiers modifiers = {}) {
        Press(pos, modifiers);
        Release(pos);
    }
    /// Clicks of the test before don't count.
    void Given(const QString& text) {
        if (RealInput::On())
            QApplication::setDoubleClickInterval(0);
        MemoWindowTest::Given(text);
    }
    void DoublePress(QPoint pos) {
        Click(pos);
        if (RealInput::On())
            QApplication::setDoubleClickInterval(400);
        Mouse(QEvent::MouseButtonDblClick, pos);
    }
    void Drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {}) {
        Press(from, modifiers);
        MoveTo((from + to) / 2);
        MoveTo(to);
        Release(to);
    }
    void Wheel(QPoint angle, Qt::KeyboardModifiers modifiers = {}, QPoint pixels = {}) {
        const QPointF pos(100, 100);
        QWheelEvent event(pos, Viewport()->mapToGlobal(pos), pixels, angle, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, /*inverted=*/false);
        QApplication::sendEvent(Viewport(), &event);
    }
    void Lines(int count) {
        QStringList lines;
        for (int i = 0; i < count; ++i)
            lines += QString("line %1 ").arg(i).repeated(40);
        Given(lines.join('\n'));
        Memo().Caret().MoveTo(0, 0);
        Memo().ClearSelection();
        QApplication::processEvents();
    }

    struct TDropResult {
        bool Taken;
        Qt::DropAction Action;
    };
    TDropResult Drop(QPoint pos, const QString& text, Qt::KeyboardModifiers modifiers = {}) {
        QMimeData data;
        data.setText(text);
        QDragEnterEvent enter(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(Viewport(), &enter);
        QDropEvent drop(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, modifiers);
        if (enter.isAccepted())
            QApplication::sendEvent(Viewport(), &drop);
        return {enter.isAccepted() && drop.isAccepted(), drop.dropAction()};
    }
    /// Drags the selection from a place in it to another and drops it there.
    void DragText(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {}) {
        FWidget->Mouse().Drag().Run = [&](QDrag& drag) {
            ++FDrags;
            return Drop(to, drag.mimeData()->text(), modifiers).Action;
        };
        Drag(from, from + QPoint(20, 0));
        Release(to);
    }
    int FDrags = 0;
};

TEST_F(MemoMouseTest, ClicksAndDragsSelect) {
    const struct {
        std::function<void()> Do;
        const char* To;
    } cases[] = {
        {[&] { Click(At(3, 0)); }, "foo| bar(1)\nsecond\na😀b"},
        {[&] { Click(At(3, 0, 2)); }, "foo| bar(1)\nsecond\na😀b"}, // the nearest edge
        {[&] { Click(At(40, 0)); }, "foo bar(1)|\nsecond\na😀b"},
        {[&] { Click(At(1, 30)); }, "foo bar(1)\nsecond\na|😀b"},
        {[&] { Click(At(1, 0)), Click(At(2, 1), Qt::ShiftModifier); }, "f^oo bar(1)\nse|cond\na😀b"},
        {[&] { Drag(At(1, 1), At(2, 0)); }, "fo|o bar(1)\ns^econd\na😀b"},
        {[&] { Drag(At(1, 0), At(3, 0)), Click(At(5, 0), Qt::ShiftModifier); }, "f^oo b|ar(1)\nsecond\na😀b"},
        {[&] { Drag(At(0, 2), At(1, 2, 14)); }, "foo bar(1)\nsecond\n^a😀|b"},
        {[&] { Click(At(1, 0)), Keys("Shift+Right"); }, "f^o|o bar(1)\nsecond\na😀b"},
        {[&] { DoublePress(At(5, 0)), Release(At(5, 0)); }, "foo ^bar|(1)\nsecond\na😀b"},
        {[&] { DoublePress(At(7, 0, 2)), Release(At(7, 0)); }, "foo bar^(|1)\nsecond\na😀b"},
        {[&] { DoublePress(At(1, 2, 3)), Release(At(1, 2)); }, "foo bar(1)\nsecond\n^a😀b|"},
        {[&] { DoublePress(At(5, 0)), MoveTo(At(2, 1)), Release(At(2, 1)); }, "foo ^bar(1)\nsecond|\na😀b"},
        {[&] { DoublePress(At(5, 0)), MoveTo(At(1, 0)), Release(At(1, 0)); }, "|foo bar^(1)\nsecond\na😀b"},
        {[&] { DoublePress(At(5, 0)), Release(At(5, 0)), Click(At(5, 0)); },
         "^foo bar(1)\n|second\na😀b"}, // three clicks
        {[&] { Click(QPoint(4, At(0, 1).y())); }, "foo bar(1)\n^second\n|a😀b"},
        {[&] { Drag(QPoint(4, At(0, 1).y()), QPoint(4, At(0, 0).y())); }, "|foo bar(1)\nsecond\n^a😀b"},
    };
    for (const auto& c : cases) {
        Given("foo bar(1)\nsecond\na😀b");
        c.Do();
        EXPECT_EQ(Shown(), c.To);
        MoveTo({});
        Release({});
    }
}

TEST_F(MemoMouseTest, AltDragsARectangle) {
    Given("abcd\ne\nfghi");
    Drag(At(1, 0), At(3, 2), Qt::AltModifier);
    EXPECT_TRUE(Memo().Selection().IsBlock());
    EXPECT_EQ(Memo().SelText(), "bc\r\rgh");
    Drag(At(1, 0), At(1, 1, 2 * FWidget->Geometry().CellWidth()), Qt::AltModifier);
    EXPECT_EQ(Memo().SelText(), "bc\r"); // beyond the end of the shorter line
    Keys("Shift+Down");
    EXPECT_FALSE(Memo().Selection().IsBlock());
    EXPECT_EQ(Text(), "abcd\ne\nfghi\n");
}

TEST_F(MemoMouseTest, ADragBeyondTheEdgesScrolls) {
    Lines(200);
    Press(At(2, 0));
    const QPoint below(At(2, 0).x(), Viewport()->height() + 40);
    MoveTo(below);
    ASSERT_TRUE(RealInput::Await([this] { return Memo().Scroll().TopLine() > 10; }));
    const QPoint right(Viewport()->width() + 5, At(0, Memo().Scroll().TopLine()).y());
    MoveTo(right);
    ASSERT_TRUE(RealInput::Await([this] { return Memo().Scroll().LeftCol() > 3; }));
    Release(right);
    const int top = Memo().Scroll().TopLine();
    EXPECT_EQ(Memo().Selection().Range().StartX, 2);
    EXPECT_EQ(Memo().Selection().Range().StartY, 0);
    EXPECT_FALSE(QTest::qWaitFor([&] { return Memo().Scroll().TopLine() != top; }, 120));
}

TEST_F(MemoMouseTest, FoldMarksOpenAndClose) {
    Given("function f() {\n  a;|\n}\nb;");
    Memo().Folding().SetEnabled(true);
    Memo().Folding().AutoCodeFold();
    const QPoint mark = FWidget->Geometry().FoldBox(0).center();
    Click(mark);
    EXPECT_FALSE(Memo().Folding().IsExpanded(0));
    EXPECT_EQ(Memo().Caret().Y(), 0); // out of what has been closed
    Click(mark);
    EXPECT_TRUE(Memo().Folding().IsExpanded(0));
}

TEST_F(MemoMouseTest, ThePointerTellsWhatAClickDoes) {
    Given("^abc|def");
    const std::pair<QPoint, Qt::CursorShape> shapes[] = {{At(1, 0, 2), Qt::ArrowCursor},
                                                         {At(5, 0, 2), Qt::IBeamCursor},
                                                         {QPoint(3, 10), Qt::ArrowCursor},
                                                         {At(5, 4), Qt::IBeamCursor}};
    for (const auto& [pos, shape] : shapes) {
        Mouse(QEvent::MouseMove, pos, {}, Qt::NoButton);
        EXPECT_EQ(Viewport()->cursor().shape(), shape) << pos.x();
    }
}

TEST_F(MemoMouseTest, TheWheelScrollsAndZooms) {
    Lines(100);
    Wheel({0, -120});
    EXPECT_EQ(Memo().Scroll().TopLine(), 3);
    Wheel({0, 120});
    for (int i = 0; i < 10; ++i)
        Wheel({0, -8}, {}, {0, -FWidget->Geometry().LineHeight() / 4}); // a touchpad
    EXPECT_EQ(Memo().Scroll().TopLine(),
              10 * (FWidget->Geometry().LineHeight() / 4) / FWidget->Geometry().LineHeight());
    Wheel({0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(Memo().Scroll().LeftCol(), 3);
    Wheel({120, 0});
    EXPECT_EQ(Memo().Scroll().LeftCol(), 0);
    Wheel({0, 60}, Qt::ControlModifier);
    Wheel({0, 60}, Qt::ControlModifier);
    EXPECT_EQ(FWidget->Zoom(), 1);
    Wheel({0, -240}, Qt::ControlModifier);
    EXPECT_EQ(FWidget->Zoom(), -1);
}

TEST_F(MemoMouseTest, SelectionsAreDragged) {
    const struct {
        const char* From;
        QPoint Grip, To; // columns and rows
        Qt::KeyboardModifiers Modifiers;
        const char* After;
    } cases[] = {
        {"^ab|cd\nef", {1, 0}, {4, 0}, {}, "cd^ab|\nef"},
        {"ab^cd|\nef", {3, 0}, {0, 0}, {}, "^cd|ab\nef"},
        {"a^b\nc|d\nef", {0, 1}, {2, 1}, {}, "ad^b\nc|\nef"},
        {"a^b\nc|d\nef", {0, 1}, {1, 2}, {}, "ad\ne^b\nc|f"},
        {"^ab|cd\nef", {1, 0}, {4, 0}, Qt::ControlModifier, "abcd^ab|\nef"},
        {"^abc|d\nef", {1, 0}, {2, 0}, {}, "^abc|d\nef"}, // into itself
        {"^abc|d\nef", {1, 0}, {2, 0}, Qt::ControlModifier, "^abc|d\nef"},
        {"^ab|cd\nef", {1, 0}, {2, 0}, {}, "^ab|cd\nef"}, // to its end
        {"a^😀|b\nef", {1, 0}, {2, 1}, {}, "ab\nef^😀|"},
    };
    for (const auto& c : cases) {
        Given(c.From);
        const std::string before = Text();
        DragText(At(c.Grip.x(), c.Grip.y(), 1), At(c.To.x(), c.To.y()), c.Modifiers);
        EXPECT_EQ(Shown(), c.After) << c.From;
        Keys("Ctrl+Z");
        EXPECT_EQ(Text(), before) << c.From;
        EXPECT_FALSE(Memo().CanUndo()) << c.From;
    }
    EXPECT_EQ(FDrags, int(std::size(cases)));
    Given("^ab|cd");
    Click(At(1, 0, 1));
    EXPECT_EQ(Shown(), "a|bcd"); // a click is no drag
    EXPECT_EQ(FDrags, int(std::size(cases)));
}

TEST_F(MemoMouseTest, ARectangleIsDragged) {
    Given("abcd\nefgh\nij");
    Drag(At(0, 0), At(2, 1), Qt::AltModifier);
    DragText(At(1, 0, 1), At(2, 2));
    EXPECT_EQ(Text(), "cd\ngh\nijab\nef\n");
    UndoAll();
    EXPECT_EQ(Text(), "abcd\nefgh\nij\n");
}

TEST_F(MemoMouseTest, TextGoesElsewhere) {
    Given("^ab|cd");
    FWidget->Mouse().Drag().Run = [](QDrag&) { return Qt::MoveAction; };
    Drag(At(1, 0, 1), At(1, 0, 30));
    EXPECT_EQ(Shown(), "|cd");
    Keys("Ctrl+Z");
    EXPECT_EQ(Shown(), "^ab|cd");
    Memo().Settings.FReadOnly = true;
    Drag(At(1, 0, 1), At(1, 0, 30));
    EXPECT_EQ(Text(), "abcd\n");
}

TEST_F(MemoMouseTest, TextFromElsewhereIsTaken) {
    Given("abc|d");
    EXPECT_TRUE(Drop(At(2, 0), "x\r\ny\rz").Taken);
    EXPECT_EQ(Shown(), "ab^x\ny\nz|cd");
    Keys("Ctrl+Z");
    EXPECT_EQ(Text(), "abcd\n");
    Memo().Settings.FReadOnly = true;
    EXPECT_FALSE(Drop(At(2, 0), "x").Taken);
    EXPECT_EQ(Text(), "abcd\n");
}

TEST_F(MemoMouseTest, TheDropCaretFollowsAndScrolls) {
    Lines(100);
    QMimeData data;
    data.setText("x");
    const auto move = [&](QPoint pos) {
        QDragMoveEvent event(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Viewport(), &event);
        return Viewport()->grab().toImage();
    };
    const QImage before = Viewport()->grab().toImage();
    QDragEnterEvent enter(At(3, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Viewport(), &enter);
    const QImage first = move(At(3, 2));
    EXPECT_NE(first, before);
    EXPECT_NE(move(At(5, 2)), first);
    QDragLeaveEvent leave;
    QApplication::sendEvent(Viewport(), &leave);
    EXPECT_EQ(Viewport()->grab().toImage(), before);
    QApplication::sendEvent(Viewport(), &enter);
    move({At(3, 2).x(), Viewport()->height() - 2});
    EXPECT_TRUE(RealInput::Await([this] { return Memo().Scroll().TopLine() > 2; }));
    EXPECT_EQ(Memo().Caret().Y(), 0);
}

/// The offscreen platform has none.
struct TPrimary : TQtMemoClipboard {
    QString Held;
    bool HasPrimary() const override { return true; }
    string PrimaryText() const override { return Held; }
    void SetPrimaryText(const string& text) override { Held = text; }
};

TEST_F(MemoMouseTest, TheMiddleButtonPastesThePrimarySelection) {
    auto owned = std::make_unique<TPrimary>();
    TPrimary& primary = *owned;
    FWidget->SetClipboard(std::move(owned));
    Given("abcd|");
    Drag(At(1, 0), At(3, 0));
    EXPECT_EQ(primary.Held, "bc");
    Mouse(QEvent::MouseButtonPress, At(4, 0), {}, Qt::MiddleButton);
    Mouse(QEvent::MouseButtonRelease, At(4, 0), {}, Qt::MiddleButton);
    EXPECT_EQ(Shown(), "abcdbc|");
    Keys("Shift+Left");
    EXPECT_EQ(primary.Held, "c");
    primary.Held = "of another program";
    Keys("Ctrl+C");
    EXPECT_EQ(primary.Held, "of another program");
    Keys("Right Ctrl+Z");
    EXPECT_EQ(Text(), "abcd\n");
}

TEST_F(MemoMouseTest, TheMenuOffersWhatApplies) {
    const auto open = [this](QContextMenuEvent::Reason reason, QPoint pos) {
        QContextMenuEvent event(reason, pos, Viewport()->mapToGlobal(pos));
        QApplication::sendEvent(reason == QContextMenuEvent::Keyboard ? FWidget.get() : Viewport(), &event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    };
    const auto offered = [](const QMenu& menu) {
        QString names;
        for (const QAction* action : menu.actions())
            if (action->isEnabled() && !action->isSeparator())
                names += action->text().remove('&').section('\t', 0, 0) + ' ';
        return names.toStdString();
    };
    FWidget->Clipboard().SetText("");
    Given("abc|");
    QMenu* menu = open(QContextMenuEvent::Mouse, At(1, 0));
    ASSERT_TRUE(menu);
    EXPECT_EQ(offered(*menu), "Select All ");
    menu->close();
    Given("^ab|c");
    FWidget->Clipboard().SetText("v");
    Keys("Shift+Right");
    menu = open(QContextMenuEvent::Keyboard, {});
    ASSERT_TRUE(menu);
    EXPECT_EQ(offered(*menu), "Cut Copy Paste Delete Select All ");
    const QPoint place = Viewport()->mapFromGlobal(menu->pos());
    EXPECT_TRUE(FWidget->Geometry().CaretRect().adjusted(-2, -2, 2, 2).contains(place));
    menu->actions()[3]->trigger();
    EXPECT_EQ(Shown(), "|");
    menu->close();
    menu = open(QContextMenuEvent::Mouse, At(1, 0));
    EXPECT_EQ(offered(*menu), "Undo Paste ");
    menu->actions()[0]->trigger();
    EXPECT_EQ(Shown(), "^abc|");
    Memo().Settings.FReadOnly = true;
    menu->close();
    menu = open(QContextMenuEvent::Mouse, At(1, 0));
    EXPECT_EQ(offered(*menu), "Copy Select All ");
    menu->close();
}

} // namespace
