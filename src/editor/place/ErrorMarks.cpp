#include "editor/place/ErrorMarks.h"

#include "editor/place/MemoState.h"

#include <algorithm>

void TErrorMarks::Set(int row, int column, int length) {
    if (FMemo.Lines().Count() == 0)
        return;
    row = std::clamp(row, 0, FMemo.Lines().Count() - 1);
    const int end = FMemo.LineLength(row);
    column = std::clamp(column, 0, end);
    TLineProp& prop = FMemo.Lines().NeedLineProp(row);
    if (!prop.HasErrorInfo())
        prop.CreateErrorInfo();
    prop.FErrStart->Add(column);
    prop.FErrLen->Add(std::clamp(length, 1, std::max(1, end - column)));
    FMemo.RepaintRow(row);
}

void TErrorMarks::Clear() {
    for (int row = 0; row < FMemo.Lines().Count(); ++row) {
        if (TLineProp* prop = FMemo.Lines().GetLineProp(row))
            prop->DropErrorInfo();
    }
    FMemo.Repaint();
}

std::vector<TErrorMark> TErrorMarks::Of(int row) const {
    const TLineProp* prop = FMemo.Lines().GetLineProp(row);
    std::vector<TErrorMark> marks;
    for (int i = 0; prop && prop->HasErrorInfo() && i < prop->FErrStart->Count(); ++i)
        marks.push_back({(*prop->FErrStart)[i], (*prop->FErrLen)[i]});
    return marks;
}
