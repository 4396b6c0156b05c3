#include "desktop/memo/bars/FindBar.h"

#include "desktop/memo/MemoWidget.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>

TFindBar::TFindBar(TMemoWidget& editor, TTextSearch& search, QWidget* parent)
    : TMemoBar(editor, parent), FSearch(search), FText(new QLineEdit(this)),
      FReplacement(new QLineEdit(this)), FCase(AddOption("Aa", "Match case")),
      FWords(AddOption("W", "Whole words")), FExpression(AddOption(".*", "Regular expression")),
      FWrap(AddOption(u"\u21BB"_qs, "Go on at the other end")),
      FPrevious(AddButton(u"\u2191"_qs, "Previous match", &TFindBar::FindPrevious)),
      FNext(AddButton(u"\u2193"_qs, "Next match", &TFindBar::FindNext)),
      FClose(AddButton(u"\u2715"_qs, "Close", nullptr)),
      FReplaceOne(AddButton("Replace", "Replace", &TFindBar::ReplaceOne)),
      FReplaceAll(AddButton("Replace all", "Replace all", &TFindBar::ReplaceAll)), FCount(new QLabel(this)) {
    FText->setPlaceholderText("Find");
    FText->setAccessibleName("Find");
    FReplacement->setPlaceholderText("Replace with");
    FReplacement->setAccessibleName("Replace with");
    FCount->setAccessibleName("Matches");
    FWrap->setChecked(true);
    for (QToolButton* button : {FReplaceOne, FReplaceAll})
        button->setAutoRaise(/*enable=*/false);
    FPrevious->setToolTip("Previous match (Shift+F3)");
    FNext->setToolTip("Next match (F3)");
    connect(FClose, &QToolButton::clicked, this, &TMemoBar::Close);
    connect(FText, &QLineEdit::textChanged, this, &TFindBar::QueryChanged);
    for (QToolButton* option : {FCase, FWords, FExpression, FWrap})
        connect(option, &QToolButton::toggled, this, &TFindBar::QueryChanged);
    for (const TReplace replace : {TReplace::No, TReplace::Yes}) {
        auto* key = new QShortcut(Qt::CTRL | (replace == TReplace::Yes ? Qt::Key_H : Qt::Key_F), this);
        key->setContext(Qt::WidgetWithChildrenShortcut);
        connect(key, &QShortcut::activated, this, [this, replace] { Open(replace); });
    }
    LayOut();
}

QToolButton* TFindBar::AddOption(const QString& text, const QString& name) {
    QToolButton* button = AddButton(text, name, nullptr);
    button->setCheckable(true);
    return button;
}

QToolButton* TFindBar::AddButton(const QString& text, const QString& name, void (TFindBar::*call)()) {
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    if (call != nullptr)
        connect(button, &QToolButton::clicked, this, call);
    return button;
}

void TFindBar::LayOut() {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setHorizontalSpacing(2);
    layout->setVerticalSpacing(3);
    layout->setColumnStretch(0, 1);
    layout->addWidget(FText, 0, 0);
    int column = 1;
    for (QToolButton* button : {FCase, FWords, FExpression, FWrap, FPrevious, FNext})
        layout->addWidget(button, 0, column++);
    layout->addWidget(FCount, 0, column++);
    layout->addWidget(FClose, 0, column);
    layout->addWidget(FReplacement, 1, 0);
    layout->addWidget(FReplaceOne, 1, 1, 1, 3);
    layout->addWidget(FReplaceAll, 1, 4, 1, 4, Qt::AlignLeft);
    const int widest = fontMetrics().horizontalAdvance("9,999 of 9,999+");
    FCount->setFixedWidth(widest);
    FCount->setAlignment(Qt::AlignCenter);
    QWidget* before = FText;
    for (QWidget* next :
         std::initializer_list<QWidget*>{FReplacement, FCase, FWords, FExpression, FWrap, FPrevious, FNext,
                                         FReplaceOne, FReplaceAll, FClose}) {
        setTabOrder(before, next);
        before = next;
    }
}

void TFindBar::Open(TReplace replace) {
    const bool replaces = replace == TReplace::Yes && !Editor().Memo().Settings.FReadOnly;
    for (QWidget* widget : std::initializer_list<QWidget*>{FReplacement, FReplaceOne, FReplaceAll})
        widget->setVisible(replaces);
    const TAdvMemo& memo = Editor().Memo();
    const QString selected = memo.SelText();
    if (Editor().hasFocus() && !selected.isEmpty() && !selected.contains(u'\r')) {
        const QSignalBlocker quiet(FText); // it is found already
        FText->setText(selected);
    }
    FAnchor = FSearch.Anchor();
    show();
    TakeQuery();
    FText->setFocus();
    FText->selectAll();
}

void TFindBar::TakeQuery() {
    FSearch.SetQuery({FText->text(), FCase->isChecked(), FWords->isChecked(), FExpression->isChecked(),
                      FWrap->isChecked()});
    ShowCount();
    Q_EMIT MatchesChanged();
}

void TFindBar::QueryChanged() {
    Q_EMIT Said({}, TMessageKind::Plain); // what was wrong with it may be right now
    TakeQuery();
    if (FSearch.Error().isEmpty())
        (void)FSearch.FindFrom(FAnchor);
    ShowCount();
}

void TFindBar::FindNext() {
    if (FText->text().isEmpty() && !isVisible())
        return Open(TReplace::No);
    TakeQuery();
    Tell(FSearch.FindNext(), "Continued from the top");
}

void TFindBar::FindPrevious() {
    if (FText->text().isEmpty() && !isVisible())
        return Open(TReplace::No);
    TakeQuery();
    Tell(FSearch.FindPrevious(), "Continued from the end");
}

void TFindBar::Tell(TFound found, const QString& wrapped) {
    FAnchor = FSearch.Anchor();
    ShowCount();
    if (!FSearch.Error().isEmpty())
        return;
    if (found == TFound::No && !FText->text().isEmpty())
        Q_EMIT Said(QString("\"%1\" was not found").arg(FText->text()), TMessageKind::Plain);
    else
        Q_EMIT Said(found == TFound::Wrapped ? wrapped : QString(), TMessageKind::Plain);
}

void TFindBar::ReplaceOne() {
    TakeQuery();
    Tell(FSearch.Replace(FReplacement->text()), "Continued from the top");
}

void TFindBar::ReplaceAll() {
    TakeQuery();
    const int count = FSearch.ReplaceAll(FReplacement->text());
    if (count == 0)
        return Tell(TFound::No, {});
    ShowCount();
    if (FSearch.Error().isEmpty())
        Q_EMIT Said(count == 1 ? QString("1 match replaced") : QString("%L1 matches replaced").arg(count),
                    TMessageKind::Plain);
}

void TFindBar::Accept(Qt::KeyboardModifiers modifiers) {
    if (FReplacement->hasFocus())
        ReplaceOne();
    else if (modifiers.testFlag(Qt::ShiftModifier))
        FindPrevious();
    else
        FindNext();
}

void TFindBar::TakeState() {
    if (!isVisible())
        return;
    if (Editor().hasFocus())
        FAnchor = FSearch.Anchor(); // typing into the field goes on from where the user went
    ShowCount();
}

void TFindBar::ShowCount() {
    const TMatchCount count = FSearch.Count();
    const QString& error = FSearch.Error();
    const QString all = QString("%L1%2").arg(count.Count).arg(count.Capped ? "+" : "");
    QString text;
    if (!error.isEmpty())
        text = "Not valid";
    else if (count.Count > 0)
        text = count.Current > 0 ? QString("%L1 of %2").arg(count.Current).arg(all) : all;
    else if (!FText->text().isEmpty())
        text = "No match";
    FCount->setText(text);
    ShowFault(!error.isEmpty() || (count.Count == 0 && !FText->text().isEmpty()));
    const int column = FSearch.ErrorColumn();
    FText->setToolTip(column > 0 ? QString("Column %1: %2").arg(column).arg(error) : error);
    if (!error.isEmpty())
        Q_EMIT Said(FText->toolTip(), TMessageKind::Error);
}

void TFindBar::ShowFault(bool fault) {
    if (std::exchange(FFault, fault) != fault)
        FText->setPalette(fault ? ErrorPalette(palette()) : QPalette());
}

void TFindBar::changeEvent(QEvent* event) {
    TMemoBar::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && FFault)
        FText->setPalette(ErrorPalette(palette()));
}

void TFindBar::hideEvent(QHideEvent* event) {
    TMemoBar::hideEvent(event);
    Q_EMIT Said({}, TMessageKind::Plain);
    Q_EMIT MatchesChanged();
}
