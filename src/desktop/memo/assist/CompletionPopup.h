#pragma once
// The window of the completion list. It never takes the keyboard: keys go to the editor, whose control moves
// the selection.
#include "desktop/memo/paint/MemoColors.h"
#include "editor/assist/CompletionBox.h"

#include <QFrame>

class QListView;

class TCompletionPopup : public QFrame {
    Q_OBJECT
public:
    /// Over the window of `editor`; `metrics` places the pieces of entries.
    TCompletionPopup(QWidget& editor, const TTextMetrics& metrics);
    ~TCompletionPopup() override;

    /// Takes entries, selection and looks.
    void Take(const TAutoCompletionListBox& box);
    [[nodiscard]] QListView& View() { return *FView; }

Q_SIGNALS:
    void Clicked(int index);

private:
    class TModel;
    class TDelegate;

    const TTextMetrics& FMetrics;
    TModel* FModel;
    QListView* FView;
    QWidget* FGrip;
};
