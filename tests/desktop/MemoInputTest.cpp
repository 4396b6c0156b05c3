// Input methods, the clipboard, and what assistive technology is told.
#include "MemoFixture.h"

#include "desktop/memo/input/MemoAccessible.h"
#include "desktop/memo/input/MemoClipboard.h"

#include <QAccessible>
#include <QClipboard>
#include <QMimeData>

namespace {

class MemoInputTest : public MemoWindowTest {
protected:
    void Compose(const QString& text, int cursor = -1, QList<QInputMethodEvent::Attribute> formats = {}) {
        if (cursor >= 0)
            formats.append({QInputMethodEvent::Cursor, cursor, 1, {}});
        QInputMethodEvent event(text, formats);
        QApplication::sendEvent(FWidget.get(), &event);
    }
    void Commit(const QString& text, int from = 0, int length = 0) {
        QInputMethodEvent event;
        event.setCommitString(text, from, length);
        QApplication::sendEvent(FWidget.get(), &event);
    }
    [[nodiscard]] QVariant Ask(Qt::InputMethodQuery query) {
        QInputMethodQueryEvent event(query);
        QApplication::sendEvent(FWidget.get(), &event);
        return event.value(query);
    }
    [[nodiscard]] std::string Composed() { return FWidget->Geometry().Rows().Preedit.Text.toStdString(); }
    [[nodiscard]] QImage Grab() { return FWidget->viewport()->grab().toImage(); }
};

TEST_F(MemoInputTest, CommittedTextIsTyped) {
    const struct {
        const char* From;
        const char* Commit;
        int At, Length;
        const char* To;
    } cases[] = {
        {"a|b", "日本", 0, 0, "a日本|b"}, {"a|b", "😀", 0, 0, "a😀|b"},     {"a|b", "x\ny", 0, 0, "ax\ny|b"},
        {"a^b|c", "日", 0, 0, "a日|c"},   {"teh|", "the", -3, 3, "the|"}, {"teh|x", "", -3, 3, "|x"},
        {"a😀|x", "b", -1, 1, "ab|x"}, // a pair is replaced whole
        {"a|", "bc", -5, 9, "bc|"},
    };
    for (const auto& c : cases) {
        Given(c.From);
        const std::string before = Text();
        Commit(QString::fromUtf8(c.Commit), c.At, c.Length);
        EXPECT_EQ(Shown(), c.To) << c.From;
        UndoAll();
        EXPECT_EQ(Text(), before) << c.From;
    }
    Given("teh|");
    Commit("the", -3, 3);
    Keys("Ctrl+Z");
    EXPECT_EQ(Text(), "teh\n"); // in one step
}

TEST_F(MemoInputTest, ComposedTextShowsAtTheCaretOnly) {
    Given("ab|cd");
    FWidget->Geometry().Update();
    const QRect plain = FWidget->Geometry().CaretRect();
    const int cell = FWidget->Geometry().CellWidth();
    Compose("xyz", 1);
    EXPECT_EQ(Text(), "abcd\n");
    EXPECT_EQ(Composed(), "xyz");
    EXPECT_EQ(FWidget->Geometry().CaretRect().left(), plain.left() + cell);
    EXPECT_TRUE(FWidget->Geometry().Rows().Preedit.Formats[0].format.fontUnderline());
    // What stands behind the caret makes room, and a click there finds it.
    EXPECT_EQ(FWidget->Geometry().XOf(0, 3), plain.left() + 4 * cell);
    EXPECT_EQ(FWidget->Geometry().XOf(0, 1), plain.left() - cell);
    EXPECT_EQ(FWidget->Geometry().ColumnAt(0, plain.left() + 4 * cell), 3);
    EXPECT_EQ(FWidget->Geometry().ColumnAt(0, plain.left() + 2 * cell), 2);
    Compose("xyz", 3);
    EXPECT_EQ(FWidget->Geometry().CaretRect().left(), plain.left() + 3 * cell);
    Compose("");
    EXPECT_EQ(FWidget->Geometry().CaretRect(), plain);
    EXPECT_FALSE(Memo().CanUndo());
}

TEST_F(MemoInputTest, ComposedTextIsTakenBack) {
    const std::function<void()> ends[] = {
        [&] { QTest::mouseClick(FWidget->viewport(), Qt::LeftButton, {}, At(1, 0)); },
        [&] { FWidget->clearFocus(); },
        [&] { Keys("Left"); },
        [&] { Memo().Settings.FReadOnly = true, Compose("xyz"); },
    };
    for (const auto& end : ends) {
        Given("ab|cd");
        FWidget->setFocus();
        Compose("xyz");
        ASSERT_EQ(Composed(), "xyz");
        end();
        EXPECT_EQ(Composed(), "");
        EXPECT_EQ(Text(), "abcd\n");
    }
    Commit("x");
    EXPECT_EQ(Text(), "abcd\n"); // still read-only
}

TEST_F(MemoInputTest, QueriesTellOfTheCaretsLine) {
    Given("first\na^bc|d\nlast");
    EXPECT_TRUE(Ask(Qt::ImEnabled).toBool());
    EXPECT_EQ(Ask(Qt::ImSurroundingText).toString(), "abcd");
    EXPECT_EQ(Ask(Qt::ImCursorPosition).toInt(), 3);
    EXPECT_EQ(Ask(Qt::ImAnchorPosition).toInt(), 1);
    EXPECT_EQ(Ask(Qt::ImCurrentSelection).toString(), "bc");
    EXPECT_EQ(Ask(Qt::ImFont).value<QFont>(), FWidget->Geometry().Font());
    const auto hints = Qt::InputMethodHints(Ask(Qt::ImHints).toInt());
    EXPECT_EQ(hints, Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText | Qt::ImhMultiLine);
    const QRect place = Ask(Qt::ImCursorRectangle).toRect();
    const QRect caret = FWidget->Geometry().CaretRect();
    EXPECT_EQ(place.topLeft(), FWidget->viewport()->mapTo(FWidget.get(), caret.topLeft()));
    Given("fi^rst\na|b");
    EXPECT_EQ(Ask(Qt::ImAnchorPosition).toInt(), 0); // it stands in another line
    Memo().Settings.FReadOnly = true;
    EXPECT_FALSE(Ask(Qt::ImEnabled).toBool());
}

TEST_F(MemoInputTest, TheClipboardSpeaksLineFeeds) {
    Given("^ab\ncd|e");
    Keys("Ctrl+C");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "ab\ncd");
    QGuiApplication::clipboard()->setText(QString("x\r\ny\rz\u2029w\x01") + QChar(0xD83D) + "v");
    Keys("Ctrl+V");
    EXPECT_EQ(Shown(), "x\ny\nz\nw\uFFFDv|e"); // and no half of a pair
    Keys("Ctrl+Z");
    EXPECT_EQ(Text(), "ab\ncde\n");
}

/// Collects what is told.
class MemoAccessibleTest : public MemoInputTest {
protected:
    MemoAccessibleTest() {
        FWidget->Accessibility().Listens = [this] { return FListens; };
        FWidget->Accessibility().Send = [this](QAccessibleEvent& event) { Note(event); };
        FInterface = QAccessible::queryAccessibleInterface(FWidget.get());
    }
    void Note(QAccessibleEvent& event) {
        if (event.type() == QAccessible::TextUpdated) {
            const auto& update = static_cast<QAccessibleTextUpdateEvent&>(event);
            FTold += QString("%1:-%2+%3 ")
                         .arg(update.changePosition())
                         .arg(update.textRemoved(), update.textInserted());
        } else if (event.type() == QAccessible::TextCaretMoved) {
            FTold += QString("@%1 ").arg(static_cast<QAccessibleTextCursorEvent&>(event).cursorPosition());
        } else if (event.type() == QAccessible::TextSelectionChanged) {
            const auto& selection = static_cast<QAccessibleTextSelectionEvent&>(event);
            FTold += QString("[%1,%2] ").arg(selection.selectionStart()).arg(selection.selectionEnd());
        }
    }
    [[nodiscard]] std::string Heard() {
        QApplication::processEvents();
        return std::exchange(FTold, {}).trimmed().toStdString();
    }
    [[nodiscard]] QAccessibleTextInterface& Texts() { return *FInterface->textInterface(); }
    QString FTold;
    QAccessibleInterface* FInterface = nullptr;
    bool FListens = true;
};

TEST_F(MemoAccessibleTest, TheTextCanBeRead) {
    Given("abc\nd^ef\ng|h");
    EXPECT_EQ(FInterface->role(), QAccessible::EditableText);
    EXPECT_TRUE(FInterface->state().editable && FInterface->state().multiLine);
    EXPECT_EQ(FInterface->text(QAccessible::Value), "abc\ndef\ngh");
    EXPECT_EQ(Texts().characterCount(), 10);
    EXPECT_EQ(Texts().text(2, 6), "c\nde");
    EXPECT_EQ(Texts().cursorPosition(), 9);
    int start = 0;
    int end = 0;
    Texts().selection(0, &start, &end);
    EXPECT_EQ(start * 100 + end, 509);
    EXPECT_EQ(Texts().textAtOffset(5, QAccessible::LineBoundary, &start, &end).trimmed(), "def");
    for (const int offset : {0, 2, 5, 9}) {
        const QRect place = Texts().characterRect(offset);
        EXPECT_EQ(Texts().offsetAtPoint(place.center()), offset);
    }
    Texts().setCursorPosition(5);
    EXPECT_EQ(Shown(), "abc\nd|ef\ngh");
    Texts().setSelection(0, 1, 6);
    EXPECT_EQ(Shown(), "a^bc\nde|f\ngh");
}

TEST_F(MemoAccessibleTest, TheTextCanBeEdited) {
    QAccessibleEditableTextInterface& edits = *FInterface->editableTextInterface();
    Given("a😀c\nd|");
    edits.insertText(3, "x\ny");
    EXPECT_EQ(Shown(), "a😀x\ny|c\nd");
    edits.deleteText(3, 6);
    edits.replaceText(2, 4, "z"); // begins within a pair, which goes whole
    EXPECT_EQ(Shown(), "az|\nd");
    UndoAll();
    EXPECT_EQ(Text(), "a😀c\nd\n");
    Memo().Settings.FReadOnly = true;
    edits.deleteText(0, 1);
    EXPECT_EQ(Text(), "a😀c\nd\n");
}

TEST_F(MemoAccessibleTest, ChangesAreTold) {
    Given("abc\n|def");
    (void)Heard();
    Type("x");
    EXPECT_EQ(Heard(), "4:-+x @5");
    Keys("Right");
    EXPECT_EQ(Heard(), "@6");
    Keys("Shift+Up");
    EXPECT_EQ(Heard(), "[2,6]");
    Keys("Backspace");
    EXPECT_EQ(Heard(), "2:-c\nxd+ [2,2]");
    Keys("Ctrl+Z");
    EXPECT_EQ(Heard(), "2:-+c\nxd [2,6]");
    FListens = false;
    Type("y");
    EXPECT_EQ(Heard(), "");
}

} // namespace
