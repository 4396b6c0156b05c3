// Random keys over a text with surrogate pairs, in the editor's window.
#include "MemoFixture.h"

#include "desktop/memo/input/MemoClipboard.h"
#include "editor/text/Characters.h"

#include <random>

namespace {

/// Random keys over a text with pairs.
class TPairsRun {
public:
    explicit TPairsRun(unsigned seed) : FRandom(seed) {}
    [[nodiscard]] int Below(int limit) { return int(FRandom() % unsigned(limit)); }
    [[nodiscard]] QString Edit() {
        static const QStringList Keys{"'a'",       "'😀'",         "'é'",        "'😁'",
                                      "Backspace", "Del",         "Ctrl+V",     "Ctrl+Backspace",
                                      "Return",    "Shift+Right", "Left",       "Up",
                                      "Down",      "Right",       "Shift+Left", "Shift+Down",
                                      "Home",      "End",         "Ctrl+C",     "Ctrl+Right",
                                      "Shift+Up",  "Shift+Del"};
        return Keys[Below(int(Keys.size()))];
    }
    [[nodiscard]] QString Any() {
        static const QStringList Keys{"Ctrl+Z", "Ctrl+Y", "Ins", "Tab", "Shift+Tab", "Ctrl+A", "Space"};
        return Below(4) ? Edit() : Keys[Below(int(Keys.size()))];
    }

private:
    std::mt19937 FRandom;
};

class MemoPairsTest : public MemoWindowTest {
protected:
    [[nodiscard]] bool IsWhole(int x, int y) { return WholeColumn(Memo().LineText(y), x) == x; }
    void Click(TPairsRun& run) {
        const Qt::KeyboardModifiers modifiers[] = {{}, {}, Qt::ShiftModifier, Qt::AltModifier};
        QTest::mouseClick(FWidget->viewport(), Qt::LeftButton, modifiers[run.Below(4)],
                          {run.Below(200), run.Below(100)});
    }
    void CheckWhole() {
        ASSERT_TRUE(Memo().Text().isValidUtf16());
        ASSERT_TRUE(IsWhole(Memo().Caret().X(), Memo().Caret().Y()));
        const TSelectionRange range = Memo().Selection().Range();
        ASSERT_TRUE(Memo().Selection().IsEmpty() ||
                    (IsWhole(range.StartX, range.StartY) && IsWhole(range.EndX, range.EndY)));
    }
};

TEST_F(MemoPairsTest, NoKeyLeavesHalfAPair) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        TPairsRun run(seed);
        Memo().Settings.FSelectionMode = seed % 4 ? smText : smBlock;
        Memo().Settings.FDelErase = seed % 5 != 0;
        Memo().Settings.FAutoExpand = seed % 7 == 0;
        Memo().Settings.FRightMargin = 5;
        Memo().SetWordWrap(seed % 3 ? wwNone : wwRightMargin);
        Given("a😀b|😁\n😀\nab😀😀 cd\n");
        FWidget->Clipboard().SetText("x😀");
        for (int step = 0; step < 100; ++step) {
            const QString key = run.Any();
            const std::string before = Shown();
            Keys(key);
            CheckWhole();
            if (step % 8 == 0)
                Click(run);
            CheckWhole();
            ASSERT_FALSE(HasFatalFailure())
                << "seed " << seed << " step " << step << ' ' << key.toStdString() << " on\n"
                << before;
        }
    }
}

} // namespace
