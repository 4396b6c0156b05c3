#include "editor/text/JoinedText.h"

#include "editor/text/LineStore.h"

#include <algorithm>

bool TJoinedText::Update(const TAdvMemoStrings& lines) {
    if (FTaken == &lines && FRevision == lines.Revision())
        return false;
    FTaken = &lines;
    FRevision = lines.Revision();
    FText.clear();
    FStarts.assign(1, 0);
    for (int row = 0; row < lines.Count(); ++row) {
        if (row > 0) {
            if (!lines.IsContinuation(row))
                FText += u'\n';
            FStarts.push_back(int(FText.size()));
        }
        FText += lines[row];
    }
    return true;
}

int TJoinedText::RowStart(int row) const {
    return row < int(FStarts.size()) ? FStarts[size_t(std::max(0, row))] : int(FText.size());
}

int TJoinedText::OffsetOf(int x, int y) const {
    return std::min(RowStart(y) + x, int(FText.size()));
}

void TJoinedText::PlaceOf(int offset, int& x, int& y) const {
    const auto at = std::upper_bound(FStarts.begin() + 1, FStarts.end(), offset);
    y = int(at - FStarts.begin()) - 1;
    x = offset - FStarts[size_t(y)];
}
