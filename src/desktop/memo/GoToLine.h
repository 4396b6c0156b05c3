#pragma once
// The bar that asks for a line to go to, as "line" or "line:column".
#include "base/Text.h"
#include "desktop/memo/MemoBar.h"

#include <optional>

class QLineEdit;

struct TLinePlace {
    int Line = 1; ///< both from 1
    int Column = 1;
    bool operator==(const TLinePlace&) const = default;
};

/// Empty where `text` is neither of the two forms. Blanks don't count; a comma does for the colon.
[[nodiscard]] std::optional<TLinePlace> ReadPlace(const string& text);

class TGoToLine : public TMemoBar {
    Q_OBJECT
public:
    TGoToLine(TMemoWidget& editor, QWidget* parent);

    void Open();

Q_SIGNALS:
    void Chosen(int line, int column);

protected:
    void Accept(Qt::KeyboardModifiers modifiers) override;

private:
    QLineEdit* FText;
};
