#pragma once
// The line below the editor: a message, and where the caret is.
#include "base/Text.h"

#include <QWidget>

class QLabel;
class TAdvCustomMemo;

enum class TMessageKind { Plain, Error };

/// `base` for text that reports an error, on a ground that says so; readable on light and on dark desktops.
[[nodiscard]] QPalette ErrorPalette(const QPalette& base);

/// One line of text, shortened to the room there is; the whole of it is the tool tip.
class TMessageArea : public QWidget {
    Q_OBJECT
public:
    explicit TMessageArea(QWidget* parent = nullptr);

    void Show(const string& text, TMessageKind kind);
    [[nodiscard]] const string& Text() const { return FText; }
    [[nodiscard]] TMessageKind Kind() const { return FKind; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    string FText;
    TMessageKind FKind = TMessageKind::Plain;
};

class TStatusLine : public QWidget {
    Q_OBJECT
public:
    explicit TStatusLine(QWidget* parent = nullptr);

    void ShowMessage(const string& text, TMessageKind kind) { FMessage->Show(text, kind); }
    [[nodiscard]] const TMessageArea& Message() const { return *FMessage; }
    /// Takes caret, selection and overwrite state.
    void TakeState(const TAdvCustomMemo& memo);

private:
    TMessageArea* FMessage;
    QLabel* FSelection;
    QLabel* FPlace;
    QLabel* FMode;
};
