#include "editor/history/UndoTarget.h"

string TUndoTarget::LineText(int y) const {
    return y >= 0 && y < Lines->Count() ? Lines->Get(y) : string();
}

void TUndoTarget::StoreLine(int y, const string& text) const {
    if (y >= 0 && y < Lines->Count())
        Lines->Put(y, text);
}
