#include "desktop/memo/bars/GoToLine.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/bars/StatusLine.h"
#include "editor/place/LinePlace.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

TGoToLine::TGoToLine(TMemoWidget& editor, QWidget* parent)
    : TMemoBar(editor, parent), FText(new QLineEdit(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    auto* label = new QLabel("&Go to line:", this);
    label->setBuddy(FText);
    layout->addWidget(label);
    layout->addWidget(FText);
    layout->addStretch(1);
    FText->setPlaceholderText("line or line:column");
    FText->setMaximumWidth(fontMetrics().averageCharWidth() * 30);
    connect(FText, &QLineEdit::textChanged, this, [this](const QString& text) {
        const bool fault = !text.isEmpty() && !ReadPlace(text);
        FText->setPalette(fault ? ErrorPalette(palette()) : QPalette());
    });
}

void TGoToLine::Open() {
    FText->setText(QString::number(PlaceOfCaret(Editor().Memo()).Line));
    show();
    FText->setFocus();
    FText->selectAll();
}

void TGoToLine::Accept(Qt::KeyboardModifiers /*modifiers*/) {
    const std::optional<TLinePlace> place = ReadPlace(FText->text());
    if (!place)
        return;
    Close();
    Q_EMIT Chosen(place->Line, place->Column);
}
