#pragma once
// TAdvJSMemoStyler: JavaScript.
#include "editor/MemoStyler.h"

class TAdvJSMemoStyler : public TAdvCustomMemoStyler {
    Q_OBJECT
public:
    explicit TAdvJSMemoStyler(TComponent* owner = nullptr);
};
