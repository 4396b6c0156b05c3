// The completion list and the parameter hint, with real keys and clicks.
#include "MemoFixture.h"
#include "desktop/memo/assist/CompletionPopup.h"
#include "desktop/memo/assist/HintWindow.h"

#include <QLineEdit>
#include <QListView>
#include <QScreen>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

class MemoAssistTest : public MemoWindowTest {
protected:
    MemoAssistTest() {
        Completion().FAutoCompletion.Delay = 1;
        Completion().Hint().FAutoHintParameterDelay = 60'000;
        FStyler.FlistAuto = {{"Document."}, {"function Include (file: string) Boolean;", ckFunc}};
        FStyler.FHintParameter.Parameters = {"SaveAs (fileName: string, how: Integer, why: string) Boolean;"};
        FMembers = {{"function Save  Boolean;", ckFunc},
                    {"function SaveAs (fileName: string, how: Integer, why: string) Boolean;", ckMethod},
                    {"property Size : Integer;", ckProp},
                    {"function Close ;", ckProc}};
        Completion().Events.OnGetAutoCompletionList = [this](const string& token, TCompletionList& list) {
            if (token == "DOCUMENT.")
                list = FMembers;
        };
    }

    [[nodiscard]] TMemoCompletion& Completion() { return FWidget->Completion(); }
    [[nodiscard]] TCompletionPopup* Popup() { return FWidget->findChild<TCompletionPopup*>(); }
    [[nodiscard]] bool Open() { return Completion().IsOpen() && Popup() != nullptr && Popup()->isVisible(); }
    [[nodiscard]] bool Closed() {
        return !Completion().IsOpen() && (Popup() == nullptr || !Popup()->isVisible());
    }
    [[nodiscard]] THintWindow* Hint() { return FWidget->findChild<THintWindow*>(); }
    [[nodiscard]] bool HintShows() { return Hint() != nullptr && Hint()->isVisible(); }
    void TypeAndOpen(const char* text = "Document.") {
        Type(text);
        ASSERT_TRUE(RealInput::Await([this] { return Open(); }));
    }
    [[nodiscard]] std::string Line() { return Memo().LineText(Memo().Caret().Y()).toStdString(); }
    [[nodiscard]] QRect CaretOnScreen() {
        const QRect caret = FWidget->Geometry().CaretRect();
        return {FWidget->viewport()->mapToGlobal(caret.topLeft()), caret.size()};
    }

    TCompletionList FMembers;
};

struct TListKey {
    const char* Name;
    std::vector<Qt::Key> Keys;
    const char* Line;
    int Selected; // -1: the list is closed
};

TEST_F(MemoAssistTest, KeysInTheOpenList) {
    const TListKey keys[] = {
        {"Enter", {Qt::Key_Return}, "Document.Save", -1},
        {"Enter with brackets", {Qt::Key_Down, Qt::Key_Return}, "Document.SaveAs()", -1},
        {"Backspace behind the dot", {Qt::Key_Backspace}, "Document", -1},
        {"Escape", {Qt::Key_Escape}, "Document.", -1},
        {"a letter", {Qt::Key_S, Qt::Key_A, Qt::Key_End}, "Document.sa", 1},
        {"Down and Up", {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up}, "Document.", 1},
        {"End", {Qt::Key_End}, "Document.", 3},
        {"Home", {Qt::Key_End, Qt::Key_Home}, "Document.", 0},
        {"Page down", {Qt::Key_PageDown}, "Document.", 3},
    };
    for (const TListKey& c : keys) {
        SCOPED_TRACE(c.Name);
        Memo().SetText("\n");
        TypeAndOpen();
        for (const Qt::Key key : c.Keys)
            Key(key);
        EXPECT_EQ(Line(), c.Line);
        EXPECT_EQ(Open() ? Popup()->View().currentIndex().row() : -1, c.Selected);
        Completion().CloseCompletionList();
        Completion().HideHint();
    }
}

TEST_F(MemoAssistTest, TheListNeitherTakesTheKeyboardNorOutlivesIt) {
    QLineEdit other(FWidget.get());
    other.show();
    TypeAndOpen();
    EXPECT_TRUE(FWidget->hasFocus());
    other.setFocus();
    EXPECT_TRUE(Closed());
    EXPECT_TRUE(other.hasFocus());
    FWidget->setFocus();
    Memo().SetText("\n");
    TypeAndOpen();
    FWidget->move(FWidget->pos() + QPoint(10, 10));
    EXPECT_TRUE(RealInput::Await([this] { return Closed(); }));
    Memo().SetText(QString(100, '\n'));
    TypeAndOpen();
    FWidget->verticalScrollBar()->setValue(10);
    EXPECT_TRUE(RealInput::Await([this] { return Closed(); }));
    Memo().SetText("\n");
    TypeAndOpen();
    QTest::mouseClick(FWidget->viewport(), Qt::LeftButton, {}, QPoint(200, 200));
    EXPECT_TRUE(Closed());
}

TEST_F(MemoAssistTest, LiesBelowTheCaretAndAboveWhereThereIsNoRoom) {
    const QRect screen = FWidget->screen()->availableGeometry();
    FWidget->move(screen.left() + 5, screen.top());
    TypeAndOpen();
    EXPECT_EQ(Popup()->pos(), CaretOnScreen().bottomLeft() + QPoint(0, 3));
    EXPECT_EQ(Popup()->height(), Completion().FAutoCompletion.Height);
    Key(Qt::Key_Escape);
    Key(Qt::Key_Return);
    Memo().Blocks().InsertBuffer("/* \xE5\xAD\x97\xE5\xAD\x97 */"); // twice as wide as a cell
    TypeAndOpen(" Document.");
    EXPECT_EQ(Popup()->pos(), CaretOnScreen().bottomLeft() + QPoint(0, 3));
    Key(Qt::Key_Escape);
    FWidget->move(screen.left() + 5, screen.bottom() - 60);
    Key(Qt::Key_Return);
    TypeAndOpen();
    EXPECT_LT(Popup()->geometry().bottom(), CaretOnScreen().top());
    EXPECT_EQ(Popup()->height(), Completion().FAutoCompletion.Height);
}

TEST_F(MemoAssistTest, TheMouseAcceptsScrollsAndSizes) {
    for (int i = 0; i < 30; ++i)
        FMembers.push_back({QString("function Member%1 (a: Integer) ;").arg(i), ckProc});
    Completion().FAutoCompletion.KeepLastSize = true;
    TypeAndOpen();
    QListView& view = Popup()->View();
    const QPointF middle = view.viewport()->rect().center();
    QWheelEvent wheel(middle, view.viewport()->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, /*inverted=*/false);
    QApplication::sendEvent(view.viewport(), &wheel);
    EXPECT_GT(view.verticalScrollBar()->value(), 0);
    Key(Qt::Key_Down); // what is selected comes back into view
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(view.currentIndex())));

    QWidget* grip = view.scrollBarWidgets(Qt::AlignBottom).value(0);
    ASSERT_NE(grip, nullptr);
    const QSize size = Popup()->size();
    QTest::mousePress(grip, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseMove(grip, QPoint(45, 65));
    QTest::mouseRelease(grip, Qt::LeftButton, {}, QPoint(45, 65));
    EXPECT_EQ(Popup()->size(), size + QSize(40, 60));

    const QModelIndex second = view.model()->index(1, 0);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(second).center());
    EXPECT_EQ(Line(), "Document.SaveAs()");
    EXPECT_TRUE(Closed());
    EXPECT_TRUE(FWidget->hasFocus());
    EXPECT_EQ(Completion().FAutoCompletion.Height, size.height() + 60);
    EXPECT_EQ(Completion().FAutoCompletion.Width, size.width() + 40);
}

TEST_F(MemoAssistTest, TheHintComesAfterARestWhileTheEditorHasTheFocus) {
    Completion().FAutoCompletion.Active = false;
    Completion().Hint().FAutoHintParameterDelay = 1;
    Type("SaveAs(");
    EXPECT_TRUE(RealInput::Await([this] { return HintShows(); }));
    FWidget->clearFocus();
    EXPECT_FALSE(HintShows());
}

TEST_F(MemoAssistTest, ListAndHintDontCoverEachOther) {
    Completion().FAutoCompletion.Active = false; // the bracket opens a list, too
    Type("SaveAs(1");
    Completion().FAutoCompletion.Active = true;
    Key(Qt::Key_Space, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(HintShows());
    TypeAndOpen(", Document.");
    EXPECT_TRUE(HintShows());
    EXPECT_FALSE(Hint()->geometry().intersects(Popup()->geometry()));
    EXPECT_FALSE(Hint()->geometry().intersects(CaretOnScreen()));
}

} // namespace
