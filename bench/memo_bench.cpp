// How fast the script editor's window is with a megabyte of text: from the event to the painted frame, on a
// desktop that paints into memory. Prints one line a measurement and fails where a promise is broken.
// QT_SCALE_FACTOR=2 measures a fine screen.
#include "EditorScript.h"
#include "desktop/memo/MemoWidget.h"
#include "editor/style/JSMemoStyler.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int Lines = 25000;
constexpr double Frame = 16; // milliseconds

/// An editor on the screen, and the events that a user makes.
class TBench : public QObject {
public:
    TBench() {
        FWidget.Memo().SetStyler(&FStyler);
        FWidget.Memo().Folding().SetEnabled(true);
        FWidget.viewport()->installEventFilter(this);
        FWidget.resize(1280, 900);
        FWidget.show();
        FWidget.activateWindow();
        FWidget.setFocus();
        QApplication::processEvents();
    }

    [[nodiscard]] TAdvMemo& Memo() { return FWidget.Memo(); }
    [[nodiscard]] bool Kept() const { return FKept; }

    void At(int x, int y) {
        Memo().Caret().MoveTo(x, y);
        Memo().ClearSelection();
        Paint();
    }
    void Key(Qt::Key key, const QString& text = {}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(&FWidget, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QApplication::sendEvent(&FWidget, &release);
    }
    void Wheel(int notches) {
        const QPointF at(400, 300);
        QWheelEvent turn(at, FWidget.viewport()->mapToGlobal(at), {}, QPoint(0, 120 * notches), Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, /*inverted=*/false);
        QApplication::sendEvent(FWidget.viewport(), &turn);
    }
    [[nodiscard]] QScrollBar& Bar() { return *FWidget.verticalScrollBar(); }

    /// Runs `event` and paints, `times` times; the 99th percentile must keep the limit, where there is one.
    void Measure(const char* what, double limit, int times, const std::function<void()>& event) {
        std::vector<double> taken;
        bool painted = true;
        for (int i = 0; i < times; ++i) {
            const qint64 start = Now();
            FPainted = false;
            event();
            Paint();
            taken.push_back(double(Now() - start) / 1e6);
            painted &= FPainted;
        }
        std::sort(taken.begin(), taken.end());
        const double slow = taken[size_t((times - 1) * 99 / 100)];
        const bool kept = painted && (limit == 0 || slow < limit);
        std::printf("%-44s median %8.3f ms, 99 %% under %8.3f ms, worst %8.3f ms%s%s\n", what,
                    taken[size_t(times / 2)], slow, taken.back(), painted ? "" : "  NOT PAINTED",
                    kept ? "" : "  TOO SLOW");
        FKept &= kept;
    }

private:
    static void Paint() { QApplication::processEvents(); }
    bool eventFilter(QObject* /*viewport*/, QEvent* event) override {
        FPainted |= event->type() == QEvent::Paint;
        return false;
    }

    TAdvJSMemoStyler FStyler;
    TMemoWidget FWidget;
    bool FPainted = false;
    bool FKept = true;
};

void Typing(TBench& bench) {
    for (const auto& [where, row] :
         {std::pair("type, top", 0), {"type, middle", Lines / 2}, {"type, end", Lines - 1}}) {
        bench.At(0, row);
        int typed = 0; // lines as people write them, with a line break now and then
        bench.Measure(where, Frame, 1000, [&] {
            if (++typed % 40 == 0)
                bench.Key(Qt::Key_Return, "\r");
            else
                bench.Key(Qt::Key_X, typed % 10 == 9 ? " " : "x");
        });
    }
}

void Scrolling(TBench& bench) {
    bench.At(0, 0);
    bench.Measure("turn the wheel", Frame, 1000, [&] { bench.Wheel(-1); });
    bench.Bar().setValue(0);
    bench.Measure("scroll by a line", Frame, 1000,
                  [&] { bench.Bar().triggerAction(QAbstractSlider::SliderSingleStepAdd); });
    bench.Bar().setValue(0);
    bench.Measure("scroll by a page", Frame, 400,
                  [&] { bench.Bar().triggerAction(QAbstractSlider::SliderPageStepAdd); });
    bench.At(0, 0);
    bench.Measure("page down", Frame, 400, [&] { bench.Key(Qt::Key_PageDown); });
    int jump = 0;
    bench.Measure("drag the bar through the text", Frame, 400,
                  [&] { bench.Bar().setValue(++jump * 7919 % (Lines - 100)); });
}

void Moving(TBench& bench) {
    bench.At(13, 0);
    bench.Measure("caret down", Frame, 1000, [&] { bench.Key(Qt::Key_Down); });
    bench.At(13, Lines / 2); // between a name and brackets
    bool right = false;
    bench.Measure("caret at brackets", Frame, 1000, [&] {
        right = !right;
        bench.Key(right ? Qt::Key_Right : Qt::Key_Left);
    });
    bench.Memo().Lines().Put(100, "{{{{{"); // without partners: the search goes as far as it may
    bench.At(1, 100);
    bench.Measure("caret at brackets without a partner", Frame, 1000, [&] {
        right = !right;
        bench.Key(right ? Qt::Key_Right : Qt::Key_Left);
    });
}

void LongLine(TBench& bench) {
    const QString line = QString("var a=\"b\"+12;f(a);").repeated(400000 / 18);
    bench.Measure("open a line of 400 KB", 0, 1, [&] { bench.Memo().SetText(line + "\n"); });
    bench.At(200000, 0);
    bench.Measure("400 KB in a line: caret right", Frame, 400, [&] { bench.Key(Qt::Key_Right); });
    bench.Measure("400 KB in a line: type (with its scan)", 0, 50, [&] { bench.Key(Qt::Key_X, "x"); });
    bench.Memo().SetText(line + QChar(0x65E5) + "\n");
    bench.At(200000, 0);
    bench.Measure("400 KB with a wide character: caret right", 0, 50, [&] { bench.Key(Qt::Key_Right); });
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    TBench bench;
    std::printf("scale %g\n", application.devicePixelRatio());
    const QString text = QString::fromLatin1(Script(Lines));
    bench.Measure("open 1 MB", 300, 5, [&] { bench.Memo().SetText(text); });
    Typing(bench);
    Scrolling(bench);
    Moving(bench);
    LongLine(bench);
    return bench.Kept() ? 0 : 1;
}
