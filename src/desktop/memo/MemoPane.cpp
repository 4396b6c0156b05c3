#include "desktop/memo/MemoPane.h"

#include "desktop/memo/bars/FindBar.h"
#include "desktop/memo/bars/GoToLine.h"
#include "editor/place/LinePlace.h"

#include <QMenu>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

void Fold(TAdvMemo& memo) {
    memo.Folding().CollapseAround(memo.Caret().Y());
}

void Unfold(TAdvMemo& memo) {
    memo.Folding().ExpandNode(memo.Caret().Y());
}

} // namespace

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
    FEditor->MarkedColumns = [this](int row) { return MarkedColumns(row); };
    FEditor->ExtendMenu = [this](QMenu& menu) { ExtendMenu(menu); };
    AddKey(*this, Qt::Key_F3, [this] { FFindBar->FindNext(); });
    AddKey(*this, Qt::SHIFT | Qt::Key_F3, [this] { FFindBar->FindPrevious(); });
    AddKey(*this, Qt::CTRL | Qt::Key_G, [this] { FGoTo->Open(); });
    AddKey(*FEditor, Qt::CTRL | Qt::Key_Slash, [this] { FCommands.ToggleComment(); });
    AddKey(*FEditor, Qt::ALT | Qt::Key_Up, [this] { FCommands.MoveUp(); });
    AddKey(*FEditor, Qt::ALT | Qt::Key_Down, [this] { FCommands.MoveDown(); });
    AddKey(*FEditor, Qt::CTRL | Qt::Key_D, [this] { FCommands.Duplicate(); });
    for (const Qt::Key bracket :
         {Qt::Key_BracketLeft, Qt::Key_BraceLeft}) // where Shift makes the one the other
        AddKey(*FEditor, Qt::CTRL | Qt::SHIFT | bracket, [this] { Fold(FEditor->Memo()); });
    for (const Qt::Key bracket : {Qt::Key_BracketRight, Qt::Key_BraceRight})
        AddKey(*FEditor, Qt::CTRL | Qt::SHIFT | bracket, [this] { Unfold(FEditor->Memo()); });
    connect(FEditor, &TMemoWidget::StateChanged, this, [this] { TakeState(); });
    connect(FFindBar, &TFindBar::Said, this,
            [this](const QString& text, TMessageKind kind) { TakeFindMessage(text, kind); });
    connect(FFindBar, &TFindBar::MatchesChanged, FEditor, [this] { FEditor->viewport()->update(); });
    connect(FGoTo, &TGoToLine::Chosen, this, [this](int line, int column) { GoTo(line, column); });
    TakeState();
}

TMemoPane::~TMemoPane() = default;

/// The matches of an open find bar, or else the word at the caret wherever it stands.
std::vector<TColumnRange> TMemoPane::MarkedColumns(int row) {
    if (FFindBar->isVisible())
        return FSearch.ColumnsOf(row);
    return FEditor->hasFocus() && FEditor->Memo().Settings.FMarkEqualWords ? FEqualWords.ColumnsOf(row)
                                                                           : std::vector<TColumnRange>();
}

void TMemoPane::ExtendMenu(QMenu& menu) {
    TAdvMemo& memo = FEditor->Memo();
    const bool edits = !memo.Settings.FReadOnly && memo.EditingAllowed();
    const bool comments = edits && memo.GetStyler() != nullptr && !memo.GetStyler()->FLineComment.isEmpty();
    const auto add = [&](const char* caption, const char* keys, bool enabled, std::function<void()> call) {
        menu.addAction(QString(caption) + u'\t' + QString(keys), &menu, std::move(call))->setEnabled(enabled);
    };
    menu.addSeparator();
    add("&Find...", "Ctrl+F", true, [this] { FFindBar->Open(TFindBar::TReplace::No); });
    add("Co&mment", "Ctrl+/", comments, [this] { FCommands.ToggleComment(); });
    const bool expanded = memo.Folding().IsExpanded(memo.Caret().Y());
    if (expanded)
        add("F&old", "Ctrl+Shift+[", memo.Folding().Enabled(), [&memo] { Fold(memo); });
    else
        add("Unf&old", "Ctrl+Shift+]", true, [&memo] { Unfold(memo); });
}

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
