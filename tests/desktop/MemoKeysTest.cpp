// Keys on their way from the desktop to the control.
#include "MemoFixture.h"

#include "base/Exceptions.h"
#include "desktop/memo/input/MemoClipboard.h"
#include "editor/edit/SurrogatePairs.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

struct TKeyCase {
    const char* From;
    const char* Keys;
    const char* To;
};

class MemoKeysTest : public MemoWindowTest {
protected:
    void Check(const std::vector<TKeyCase>& cases) {
        for (const TKeyCase& c : cases) {
            Memo().Settings.FOverwrite = false;
            Given(c.From);
            Keys(c.Keys);
            EXPECT_EQ(Shown(), c.To) << c.From << "  " << c.Keys;
        }
    }
    /// Whether the widget has used the key.
    bool Send(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(FWidget.get(), &event);
        return event.isAccepted();
    }
    bool Claims(int key, Qt::KeyboardModifiers modifiers, const QString& text = {}) {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
        event.ignore();
        QApplication::sendEvent(FWidget.get(), &event);
        return event.isAccepted();
    }
};

// What a key does is tested without a window; these are the ways that keys take.
TEST_F(MemoKeysTest, ReachTheControl) {
    Check({
        {"abc|\nd", "Right", "abc\n|d"},
        {"a|b c", "Ctrl+Shift+Right", "a^b |c"},
        {"a|b\nc", "Ctrl+Shift+Home", "|a^b\nc"},
        {"a|b", "Enter", "a\n|b"},
        {"ab|c", "Shift+Backspace", "a|c"},
        {"a^b|c", "'x'", "ax|c"},
        {"    ab|", "Shift+Tab", "  |  ab"},
        {"a|b", "'x' Alt+Backspace Alt+Shift+Backspace", "ax|b"},
        {"^ab|c", "Ctrl+X End Ctrl+V", "cab|"},
        {"^ab|c", "Shift+Del End Shift+Ins", "cab|"},
    });
    Memo().Settings.FReadOnly = true;
    Check({
        {"a|b", "'x' Return Tab Backspace Del Ctrl+V Ctrl+X Ins", "a|b"},
        {"a|b", "Shift+Right Ctrl+C Home", "|ab"},
    });
    EXPECT_EQ(FWidget->Clipboard().Text(), "b");
}

// Platforms disagree about the text of an event; each of these has been met somewhere.
TEST_F(MemoKeysTest, CharactersAreMadeFromTheKey) {
    const auto CtrlAlt = Qt::ControlModifier | Qt::AltModifier;
    const struct {
        int Key;
        Qt::KeyboardModifiers Modifiers;
        const char* Text;
        const char* To;
        bool Used;
    } cases[] = {
        {Qt::Key_Backspace, {}, "", "a|c", true},
        {Qt::Key_Backspace, {}, "\x7f", "a|c", true},
        {Qt::Key_Return, {}, "", "ab\n|c", true},
        {Qt::Key_Return, {}, "\n", "ab\n|c", true},
        {Qt::Key_Enter, Qt::KeypadModifier, "\r", "ab\n|c", true},
        {Qt::Key_Return, Qt::ControlModifier, "\n", "ab\n|c", true},
        {Qt::Key_Escape, {}, "\x1b", "ab|c", true},
        {Qt::Key_Delete, {}, "\x7f", "ab|", true},
        {Qt::Key_Tab, {}, "", "ab    |c", true},
        {Qt::Key_A, Qt::ControlModifier, "a", "^abc|", true},
        {Qt::Key_S, Qt::ControlModifier, "s", "ab|c", false},
        {Qt::Key_1, Qt::ControlModifier, "1", "ab|c", false},
        {Qt::Key_X, Qt::AltModifier, "x", "ab|c", false},
        {Qt::Key_Left, Qt::AltModifier, "", "ab|c", false},
        {Qt::Key_F5, {}, "", "ab|c", false},
        {Qt::Key_F, CtrlAlt, "f", "ab|c", false},
        {Qt::Key_At, Qt::GroupSwitchModifier, "@", "ab@|c", true},
        {Qt::Key_At, CtrlAlt, "@", "ab@|c", true}, // how some keyboards report AltGr
        {Qt::Key_Y, CtrlAlt, "\xc2\xbb", "ab\xc2\xbb|c", true},
        {0, {}, "\xc3\xa9x", "ab\xc3\xa9x|c", true}, // composed from dead keys
        {Qt::Key_Space, Qt::ShiftModifier, " ", "ab |c", true},
        {Qt::Key_A, Qt::MetaModifier, "a", "ab|c", false},
    };
    for (const auto& c : cases) {
        Given("ab|c");
        EXPECT_EQ(Send(c.Key, c.Modifiers, QString::fromUtf8(c.Text)), c.Used) << c.Key << c.Text;
        EXPECT_EQ(Shown(), c.To) << c.Key << c.Text;
    }
}

TEST_F(MemoKeysTest, ShortcutsElsewhereYieldToTheEditorsKeys) {
    for (const int key : {Qt::Key_A, Qt::Key_C, Qt::Key_F, Qt::Key_H, Qt::Key_V, Qt::Key_X, Qt::Key_Y,
                          Qt::Key_Z, Qt::Key_Space, Qt::Key_Left, Qt::Key_Tab, Qt::Key_Plus, Qt::Key_0})
        EXPECT_TRUE(Claims(key, Qt::ControlModifier)) << key;
    EXPECT_TRUE(Claims(Qt::Key_Return, {}, "\r"));
    EXPECT_TRUE(Claims(Qt::Key_Q, {}, "q"));
    EXPECT_FALSE(Claims(Qt::Key_S, Qt::ControlModifier, "\x13"));
    EXPECT_FALSE(Claims(Qt::Key_F3, {}));
    EXPECT_FALSE(Claims(Qt::Key_F, Qt::AltModifier, "f"));
    QShortcut all(QKeySequence("Ctrl+A"), FWidget.get());
    QShortcut save(QKeySequence("Ctrl+S"), FWidget.get());
    int saves = 0;
    QObject::connect(&all, &QShortcut::activated, [] { ADD_FAILURE(); });
    QObject::connect(&save, &QShortcut::activated, [&saves] { ++saves; });
    Given("a|b");
    Keys("Ctrl+A Ctrl+S");
    EXPECT_EQ(Shown(), "^ab|");
    EXPECT_EQ(saves, 1);
}

TEST_F(MemoKeysTest, ZoomsByKey) {
    Keys("Ctrl++ Ctrl+= Ctrl+-");
    EXPECT_EQ(FWidget->Zoom(), 1);
    Keys("Ctrl+0");
    EXPECT_EQ(FWidget->Zoom(), 0);
}

TEST_F(MemoKeysTest, PairsStayTogether) {
    Check({
        {"😀|a", "Left", "|😀a"},
        {"|😀a", "Right", "😀|a"},
        {"|😀a", "Shift+Right", "^😀|a"},
        {"a😀|", "Shift+Left Shift+Left", "|a😀^"},
        {"a|b\n😀", "Down", "ab\n|😀"},
        {"😀b\na|", "Up", "|😀b\na"},
        {"a😀b 😀|", "Ctrl+Left", "a😀b |😀"},
        {"aa😀bb|", "Shift+Tab", "aa|😀bb"},
        {"|😀a", "Del Ctrl+Z", "|😀a"},
        {"a 😀b😀|", "Ctrl+Backspace", "a |"},
        {"a😀|b", "Backspace Ctrl+Z Right", "a😀b|"},
        {"a|b", "'😀' Ctrl+Z Ctrl+Y", "a😀|b"},
        {"|😀b", "Ins '😁'", "😁|b"},
        {"|😀b", "Ins 'x' Ctrl+Z Ctrl+Y", "x|b"},
        {"|ab", "Ins '😀' Ctrl+Z Ctrl+Y", "😀|b"},
        {"ab|", "Ins '😀'", "ab😀|"},
        {"abc|", "Ins Backspace Ctrl+Z", "abc|"}, // replayed characters don't overwrite
        {"|abc", "Ins Del Ctrl+Z", "|abc"},
        // Marks and joined figures: a step each for moving, a piece each for Backspace.
        {"|e\u0301x", "Right", "e\u0301|x"},
        {"e\u0301|x", "Left", "|e\u0301x"},
        {"|e\u0301x", "Del", "|x"},
        {"e\u0301|x", "Backspace", "e|x"},
        {"|👩‍👧x", "Shift+Right", "^👩‍👧|x"},
        {"|👩‍👧x", "Del Ctrl+Z Del", "|x"},
    });
    Memo().Settings.FSelectionMode = smBlock;
    Check({{"^a😀c\nabcd\n12|3", "Del", "|c\nd\n"}}); // the pair that the rectangle cuts belongs to it
}

TEST_F(MemoKeysTest, SelectionsThatCutPairsTakeThemWhole) {
    for (const TSelectionRange& range : {TSelectionRange{1, 0, 2, 0}, TSelectionRange{2, 0, 1, 0},
                                         TSelectionRange{2, 0, 3, 0}, TSelectionRange{1, 0, 3, 0}})
        for (const char* keys : {"Del", "Backspace", "'x'", "Ctrl+X", "Ctrl+V", "Return"}) {
            Given("a😀b|");
            FWidget->Clipboard().SetText("v");
            Memo().Selection().Take(range, false);
            Memo().Caret().MoveTo(range.EndX, range.EndY);
            Memo().Selection().Take(range, false);
            Keys(keys);
            EXPECT_FALSE(Memo().Text().contains("😀")) << keys;
            EXPECT_TRUE(Memo().Text().isValidUtf16()) << keys;
            EXPECT_TRUE(Memo().Text().startsWith("a")) << keys;
        }
}

TEST_F(MemoKeysTest, AHistoryThatLostAHalfStepIsEmptied) {
    Given("^a|b");
    FWidget->Clipboard().SetText("v");
    Keys("Ctrl+V");
    for (int i = 0; i < 99; ++i)
        Keys("'x' Left");
    UndoAll();
    EXPECT_EQ(Text(), "b\n");
    Keys("'y' Ctrl+Z");
    EXPECT_EQ(Text(), "b\n");
    EXPECT_TRUE(Memo().Settings.FAutoIndent);
}

} // namespace
