#pragma once
// The bar that finds and replaces. The search goes along with what is typed; Return finds the next match,
// Shift+Return the one before.
#include "desktop/memo/bars/MemoBar.h"
#include "desktop/memo/bars/StatusLine.h"
#include "editor/edit/TextSearch.h"

class QLabel;
class QLineEdit;
class QToolButton;

class TFindBar : public TMemoBar {
    Q_OBJECT
public:
    TFindBar(TMemoWidget& editor, TTextSearch& search, QWidget* parent);

    enum class TReplace { No, Yes };
    /// Shows the bar, with or without its second row. A selection within a line becomes what is searched for.
    void Open(TReplace replace);
    void FindNext();
    void FindPrevious();
    /// The text changed, or the selection.
    void TakeState();

Q_SIGNALS:
    /// What there is to say about the search; empty when there is nothing any more.
    void Said(const QString& text, TMessageKind kind);
    /// Other matches are to be seen, or none.
    void MatchesChanged();

protected:
    void Accept(Qt::KeyboardModifiers modifiers) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] QToolButton* AddOption(const QString& text, const QString& name);
    [[nodiscard]] QToolButton* AddButton(const QString& text, const QString& name, void (TFindBar::*call)());
    void LayOut();
    void QueryChanged();
    void TakeQuery();
    void ReplaceOne();
    void ReplaceAll();
    void Tell(TFound found, const QString& wrapped);
    void ShowCount();
    void ShowFault(bool fault);

    TTextSearch& FSearch;
    QLineEdit* FText;
    QLineEdit* FReplacement;
    QToolButton *FCase, *FWords, *FExpression, *FWrap;
    QToolButton *FPrevious, *FNext, *FClose, *FReplaceOne, *FReplaceAll;
    QLabel* FCount;
    int FAnchor = 0; // where the search for what is being typed begins
    bool FFault = false;
};
