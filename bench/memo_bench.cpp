// How fast the script editor's window is with a megabyte of text: from the event to the painted frame, on a
// desktop that paints into memory. Prints one line a measurement and fails where a promise is broken.
// QT_SCALE_FACTOR=2 measures a fine screen.
#include "EditorScript.h"
#include "desktop/ScriptEditorDialog.h"
#include "desktop/memo/MemoWidget.h"
#include "editor/style/JSMemoStyler.h"
#include "scripting/host/Engine.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>
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
    explicit TBench(TMemoWidget& widget) : FWidget(widget) {
        FWidget.viewport()->installEventFilter(this);
        FWidget.window()->resize(1280, 900);
        FWidget.window()->show();
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
        Tell(what, limit, std::move(taken), painted ? "" : "  NOT PAINTED");
    }
    void Tell(const char* what, double limit, std::vector<double> taken, const char* fault = "") {
        std::sort(taken.begin(), taken.end());
        const size_t times = taken.size();
        const double slow = taken[(times - 1) * 99 / 100];
        const bool kept = *fault == '\0' && (limit == 0 || slow < limit);
        std::printf("%-44s median %8.3f ms, 99 %% under %8.3f ms, worst %8.3f ms%s%s\n", what,
                    taken[times / 2], slow, taken.back(), fault, kept ? "" : "  TOO SLOW");
        FKept &= kept;
    }

private:
    static void Paint() { QApplication::processEvents(); }
    bool eventFilter(QObject* /*viewport*/, QEvent* event) override {
        FPainted |= event->type() == QEvent::Paint;
        return false;
    }

    TMemoWidget& FWidget;
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

/// What the thread of the windows is at without a pause, in milliseconds: a key pressed meanwhile waits.
class TTurns : public QObject {
public:
    TTurns() {
        auto* events = QAbstractEventDispatcher::instance();
        connect(events, &QAbstractEventDispatcher::awake, this, [this] { FStart = Now(); });
        connect(events, &QAbstractEventDispatcher::aboutToBlock, this,
                [this] { Taken.push_back(double(Now() - FStart) / 1e6); });
    }
    std::vector<double> Taken;

private:
    qint64 FStart = Now();
};

/// The dialog, with a user who rests again and again, so that the whole text is checked.
[[nodiscard]] bool Checking(const QString& text) {
    bool kept = true;
    QTimer::singleShot(0, [&kept] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        TBench bench(*dialog->findChild<TMemoWidget*>());
        bench.At(0, Lines / 2);
        bench.Measure("type in the dialog", Frame, 400, [&] { bench.Key(Qt::Key_X, "x"); });
        std::vector<double> waits;
        for (const int pause : {650, 690, 695, 698, 700, 702, 705, 710, 730, 760, 800, 900, 1100})
            for (const char* typed : {" ", "x", ";", " ", "("}) {
                QElapsedTimer watch;
                watch.start();
                TTurns turns;
                while (watch.elapsed() < pause)
                    QApplication::processEvents(QEventLoop::WaitForMoreEvents);
                const qint64 start = Now();
                bench.Key(Qt::Key_X, typed);
                QApplication::processEvents();
                const double key = double(Now() - start) / 1e6;
                waits.push_back(key + (turns.Taken.empty()
                                           ? 0
                                           : *std::max_element(turns.Taken.begin(), turns.Taken.end())));
            }
        bench.Tell("type while it checks, the longest wait", Frame, waits);
        kept = bench.Kept();
        dialog->done(QDialog::Rejected);
    });
    TJSEngine engine(256 << 20);
    TDesktopScriptEditorHost().EditFile({"a.js", text, /*ReadOnly=*/false, {}}, &engine, nullptr);
    return kept;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    TAdvJSMemoStyler styler;
    TMemoWidget widget;
    widget.Memo().SetStyler(&styler);
    widget.Memo().Folding().SetEnabled(true);
    TBench bench(widget);
    std::printf("scale %g\n", application.devicePixelRatio());
    const QString text = QString::fromLatin1(Script(Lines));
    bench.Measure("open 1 MB", 300, 5, [&] { bench.Memo().SetText(text); });
    Typing(bench);
    Scrolling(bench);
    Moving(bench);
    LongLine(bench);
    widget.hide();
    return Checking(text) && bench.Kept() ? 0 : 1;
}
