// The pane around the editor: finding, replacing, going to lines, the status line.
#include "desktop/memo/MemoPane.h"
#include "MemoFixture.h"
#include "desktop/memo/bars/FindBar.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

/// A pane in a dialog whose default button counts how often it is pressed.
class MemoPaneTest : public MemoWindowTest {
protected:
    MemoPaneTest() {
        FWidget.reset();
        FPane = new TMemoPane(&FDialog);
        auto* button = new QPushButton("OK", &FDialog);
        auto* layout = new QVBoxLayout(&FDialog);
        layout->addWidget(FPane);
        layout->addWidget(button);
        button->setDefault(true);
        QObject::connect(button, &QPushButton::clicked, button, [this] { ++FPresses; });
        Pane().Editor().Memo().SetStyler(&FStyler);
        FDialog.resize(640, 400);
        FDialog.show();
        FDialog.activateWindow();
        Pane().Editor().setFocus();
        (void)QTest::qWaitForWindowActive(&FDialog, RealInput::Patience);
    }
    ~MemoPaneTest() override { delete FPane; }

    [[nodiscard]] TMemoPane& Pane() { return *FPane; }
    [[nodiscard]] TAdvMemo& PaneMemo() { return FPane->Editor().Memo(); }
    void Given(const char* text, int x, int y) {
        PaneMemo().SetText(text);
        PaneMemo().Caret().MoveTo(x, y);
        PaneMemo().ClearSelection();
    }
    /// To whatever has the focus.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    void Write(const char* text) { QTest::keyClicks(QApplication::focusWidget(), text); }
    template <class T> [[nodiscard]] T* Named(const char* name) {
        for (T* widget : FPane->findChildren<T*>())
            if (widget->accessibleName() == name)
                return widget;
        return nullptr;
    }
    [[nodiscard]] std::string Shown(const char* name) {
        QApplication::processEvents();
        return Named<QLabel>(name)->text().toStdString();
    }
    [[nodiscard]] std::string Message() { return Pane().StatusLine().Message().Text().toStdString(); }

    QDialog FDialog;
    TMemoPane* FPane;
    int FPresses = 0;
};

TEST_F(MemoPaneTest, FindsAsOneTypesAndFromMatchToMatch) {
    Given("one two\none\nzero one\n", 0, 0);
    Press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(Named<QLineEdit>("Find")->hasFocus());
    EXPECT_FALSE(Named<QLineEdit>("Replace with")->isVisible());
    Write("on");
    EXPECT_EQ(PaneMemo().SelText(), "on");
    Write("e");
    EXPECT_EQ(Shown("Matches"), "1 of 3");
    Press(Qt::Key_Return);
    EXPECT_EQ(Shown("Matches"), "2 of 3");
    Press(Qt::Key_F3);
    EXPECT_EQ(Shown("Matches"), "3 of 3");
    Press(Qt::Key_Enter);
    EXPECT_EQ(Shown("Matches"), "1 of 3");
    EXPECT_EQ(Message(), "Continued from the top");
    Press(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(PaneMemo().Caret().Y(), 2);
    Named<QAbstractButton>("Next match")->setFocus();
    Press(Qt::Key_Return); // presses the button that has the focus
    EXPECT_EQ(Shown("Matches"), "1 of 3");
    Press(Qt::Key_Escape);
    EXPECT_FALSE(Pane().FindBar().isVisible());
    EXPECT_TRUE(Pane().Editor().hasFocus());
    EXPECT_TRUE(FDialog.isVisible());
    Press(Qt::Key_F3, Qt::ShiftModifier); // works without the bar
    EXPECT_EQ(PaneMemo().Caret().Y(), 2);
    EXPECT_EQ(FPresses, 0);
}

TEST_F(MemoPaneTest, TakesOverASelectionAndSaysWhatIsWrong) {
    Given("a(b) x\n", 0, 0);
    Press(Qt::Key_Right, Qt::ShiftModifier);
    Press(Qt::Key_Right, Qt::ShiftModifier);
    Press(Qt::Key_F, Qt::ControlModifier);
    auto* text = Named<QLineEdit>("Find");
    EXPECT_EQ(text->text(), "a(");
    EXPECT_EQ(Shown("Matches"), "1 of 1");
    const QColor plain = text->palette().color(QPalette::Base);
    Named<QAbstractButton>("Regular expression")->click();
    EXPECT_EQ(Shown("Matches"), "Not valid");
    EXPECT_NE(text->palette().color(QPalette::Base), plain);
    EXPECT_EQ(Pane().StatusLine().Message().Kind(), TMessageKind::Error);
    EXPECT_TRUE(Message().starts_with("Column 3: ")) << Message();
    Write("x");
    EXPECT_EQ(Message(), "");
    EXPECT_EQ(text->palette().color(QPalette::Base), plain);
    EXPECT_EQ(Shown("Matches"), "1 of 1");
    Write("y");
    EXPECT_EQ(Shown("Matches"), "No match");
    EXPECT_NE(text->palette().color(QPalette::Base), plain);
    Press(Qt::Key_Escape);
    EXPECT_EQ(Message(), "");
}

TEST_F(MemoPaneTest, Replaces) {
    Given("cat cat cat\n", 0, 0);
    Press(Qt::Key_F, Qt::ControlModifier);
    Press(Qt::Key_H, Qt::ControlModifier); // from the bar itself
    Write("cat");
    Press(Qt::Key_Tab);
    ASSERT_TRUE(Named<QLineEdit>("Replace with")->hasFocus());
    Write("dog");
    Press(Qt::Key_Slash, Qt::ControlModifier); // a key of the editor, not of the field
    Press(Qt::Key_Return);                     // the first was found while it was typed
    EXPECT_EQ(PaneMemo().Text(), "dog cat cat\n");
    Named<QAbstractButton>("Replace all")->click();
    EXPECT_EQ(PaneMemo().Text(), "dog dog dog\n");
    EXPECT_EQ(Message(), "2 matches replaced");
    PaneMemo().Undo();
    EXPECT_EQ(PaneMemo().Text(), "dog cat cat\n");
    EXPECT_EQ(FPresses, 0);
}

TEST_F(MemoPaneTest, GoesToLinesAndTellsWhereItIs) {
    Given("if (a) {\n  b\n}\nlast line\n", 0, 0);
    PaneMemo().Folding().SetEnabled(true);
    PaneMemo().Folding().CollapseNode(0);
    Press(Qt::Key_G, Qt::ControlModifier);
    Write("2:3");
    Press(Qt::Key_Return);
    EXPECT_TRUE(PaneMemo().Caret().IsAt(2, 1));
    EXPECT_TRUE(PaneMemo().Folding().IsVisible(1));
    EXPECT_TRUE(Pane().Editor().hasFocus());
    EXPECT_EQ(Shown("Place of the caret"), "Line 2, column 3");
    Press(Qt::Key_G, Qt::ControlModifier);
    Write("900");
    Press(Qt::Key_Return);
    EXPECT_EQ(PaneMemo().Caret().Y(), PaneMemo().Lines().Count() - 1);
    EXPECT_EQ(FPresses, 0);

    Pane().GoTo(4, 1);
    Press(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(Shown("Selection"), "9 selected");
    EXPECT_EQ(Shown("Typing mode"), "INS");
    Press(Qt::Key_Insert);
    Pane().ShowMessage("It failed", TMessageKind::Error);
    EXPECT_EQ(Shown("Typing mode"), "OVR");
    EXPECT_EQ(Message(), "It failed");
    Write("x"); // another text: it may be right now
    QApplication::processEvents();
    EXPECT_EQ(Message(), "");
}

TEST_F(MemoPaneTest, HasKeysForLines) {
    Given("a\nb\n", 0, 0);
    Press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(PaneMemo().Text(), "b\na\n");
    Press(Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_EQ(PaneMemo().Text(), "b\n// a\n");
    Press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(PaneMemo().Text(), "// a\nb\n");
    Press(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(PaneMemo().Text(), "// a\n// a\nb\n");
}

} // namespace
