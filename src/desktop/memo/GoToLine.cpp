#include "desktop/memo/GoToLine.h"

#include "desktop/memo/MemoWidget.h"
#include "desktop/memo/StatusLine.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

std::optional<TLinePlace> ReadPlace(const string& text) {
    static const QRegularExpression Form("^\\s*([0-9]{1,9})\\s*(?:[:,]\\s*([0-9]{1,9})?\\s*)?$");
    const QRegularExpressionMatch match = Form.match(text);
    if (!match.hasMatch())
        return {};
    const auto number = [](const QString& digits) { return std::max(1, digits.toInt()); };
    return TLinePlace{number(match.captured(1)), number(match.captured(2))};
}

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
    FText->setText(QString::number(Editor().Memo().Caret().Y() + 1));
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
