#include "desktop/memo/MemoPane.h"

#include "desktop/memo/bars/FindBar.h"
#include "desktop/memo/bars/GoToLine.h"
#include "editor/place/LinePlace.h"

#include <QShortcut>
#include <QVBoxLayout>

TMemoPane::TMemoPane(QWidget* parent)
    : QWidget(parent), FEditor(new TMemoWidget(this)), FSearch(FEditor->Memo()), FCommands(FEditor->Memo()),
      FFindBar(new TFindBar(*FEditor, FSearch, this)), FGoTo(new TGoToLine(*FEditor, this)),
      FStatus(new TStatusLine(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(FEditor, 1);
    for (QWidget* bar : std::initializer_list<QWidget*>{FFindBar, FGoTo, FStatus})
        layout->addWidget(bar);
    setFocusProxy(FEditor);
    FEditor->Memo().Events.FOnFind = [this] { FFindBar->Open(TFindBar::TReplace::No); };
    FEditor->Memo().Events.FOnReplace = [this] { FFindBar->Open(TFindBar::TReplace::Yes); };
    FEditor->MarkedColumns = [this](int row) {
        return FFindBar->isVisible() ? FSearch.ColumnsOf(row) : std::vector<TColumnRange>();
    };
    AddKey(*this, Qt::Key_F3, [this] { FFindBar->FindNext(); });
    AddKey(*this, Qt::SHIFT | Qt::Key_F3, [this] { FFindBar->FindPrevious(); });
    AddKey(*this, Qt::CTRL | Qt::Key_G, [this] { FGoTo->Open(); });
    AddKey(*FEditor, Qt::CTRL | Qt::Key_Slash, [this] { FCommands.ToggleComment(); });
    AddKey(*FEditor, Qt::ALT | Qt::Key_Up, [this] { FCommands.MoveUp(); });
    AddKey(*FEditor, Qt::ALT | Qt::Key_Down, [this] { FCommands.MoveDown(); });
    AddKey(*FEditor, Qt::CTRL | Qt::Key_D, [this] { FCommands.Duplicate(); });
    connect(FEditor, &TMemoWidget::StateChanged, this, [this] { TakeState(); });
    connect(FFindBar, &TFindBar::Said, this,
            [this](const QString& text, TMessageKind kind) { TakeFindMessage(text, kind); });
    connect(FFindBar, &TFindBar::MatchesChanged, FEditor, [this] { FEditor->viewport()->update(); });
    connect(FGoTo, &TGoToLine::Chosen, this, [this](int line, int column) { GoTo(line, column); });
    TakeState();
}

TMemoPane::~TMemoPane() = default;

/// Works wherever in `where` the focus is.
void TMemoPane::AddKey(QWidget& where, const QKeySequence& key, const std::function<void()>& call) {
    auto* shortcut = new QShortcut(key, &where);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, call] {
        FEditor->Completion().CloseCompletionList();
        FEditor->Memo().Activate();
        call();
    });
}

/// Having nothing to say takes away only what the find bar has said itself.
void TMemoPane::TakeFindMessage(const string& text, TMessageKind kind) {
    if (text.isEmpty() && !FMessageFromFind)
        return;
    ShowMessage(text, kind);
    FMessageFromFind = true;
}

void TMemoPane::ShowMessage(const string& text, TMessageKind kind) {
    FStatus->ShowMessage(text, kind);
    FMessageFromFind = false;
    FMessageRevision = FEditor->Memo().Lines().Revision();
}

void TMemoPane::GoTo(int line, int column) {
    GoToPlace(FEditor->Memo(), {line, column});
    FEditor->setFocus();
}

void TMemoPane::TakeState() {
    FStatus->TakeState(FEditor->Memo());
    FFindBar->TakeState();
    if (!FStatus->Message().Text().isEmpty() && FMessageRevision != FEditor->Memo().Lines().Revision())
        ShowMessage({});
}
