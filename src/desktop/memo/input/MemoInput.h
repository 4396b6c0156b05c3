#pragma once
// Text from input methods: what is being composed shows at the caret, what is finished is typed.
#include "base/Text.h"

class QInputMethodEvent;
class QVariant;
class TMemoWidget;

class TMemoInput {
public:
    explicit TMemoInput(TMemoWidget& widget);

    void Take(QInputMethodEvent& event);
    /// Takes back what is being composed.
    void Cancel();
    /// An answer to a Qt::InputMethodQuery; invalid where the widget's own holds.
    [[nodiscard]] QVariant Answer(int query) const;

private:
    void Commit(const QInputMethodEvent& event);
    void Compose(const QInputMethodEvent& event);
    void Select(int start, int length);
    [[nodiscard]] QVariant Surroundings(int query) const;

    TMemoWidget& FWidget;
};
