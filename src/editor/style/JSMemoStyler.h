#pragma once
// TAdvJSMemoStyler: JavaScript.
#include "editor/style/MemoStyler.h"

class TAdvJSMemoStyler : public TAdvCustomMemoStyler {
    Q_OBJECT
public:
    explicit TAdvJSMemoStyler(TComponent* owner = nullptr);

    /// The language as it is written today: its words, text between grave accents, escapes with a backslash,
    /// regular expressions; in colours that stand out from white by 4.5:1 at least. Words count with their
    /// case: set TStyleRules::FCaseSensitive, too.
    void UseTodaysLanguage();
};
