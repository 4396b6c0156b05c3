#pragma once
// TAdvJSMemoStyler: JavaScript.
#include "editor/style/MemoStyler.h"

class TAdvJSMemoStyler : public TAdvCustomMemoStyler {
    Q_OBJECT
public:
    explicit TAdvJSMemoStyler(TComponent* owner = nullptr);
};
