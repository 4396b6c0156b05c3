#pragma once
// The script editor as dialogs use it: the editor's window with its find bar, its go-to-line bar and its
// status line, and the keys that lead to them.
#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/bars/StatusLine.h"
#include "editor/edit/LineCommands.h"
#include "editor/edit/TextSearch.h"
#include "editor/place/EqualWords.h"

class TFindBar;
class TGoToLine;
class QMenu;

class TMemoPane : public QWidget {
    Q_OBJECT
public:
    explicit TMemoPane(QWidget* parent = nullptr);
    ~TMemoPane() override;

    [[nodiscard]] TMemoWidget& Editor() { return *FEditor; }
    [[nodiscard]] TFindBar& FindBar() { return *FFindBar; }
    [[nodiscard]] TStatusLine& StatusLine() { return *FStatus; }

    /// Shows in the status line until the text changes or another message comes.
    void ShowMessage(const string& text, TMessageKind kind = TMessageKind::Plain);
    /// Puts the caret at a line and column, both from 1 and brought in range, with folds around it opened.
    void GoTo(int line, int column = 1);

private:
    void AddKey(QWidget& where, const QKeySequence& key, const std::function<void()>& call);
    void TakeState();
    [[nodiscard]] std::vector<TColumnRange> MarkedColumns(int row);
    void ExtendMenu(QMenu& menu);
    void TakeFindMessage(const string& text, TMessageKind kind);

    TMemoWidget* const FEditor; // Qt's parents own the windows
    TTextSearch FSearch;
    TLineCommands FCommands;
    TFindBar* FFindBar = nullptr;
    TGoToLine* FGoTo = nullptr;
    TStatusLine* FStatus = nullptr;
    unsigned FMessageRevision = 0; // the text's, when the message came
    TEqualWords FEqualWords{FEditor->Memo()};
    bool FMessageFromFind = false;
};
