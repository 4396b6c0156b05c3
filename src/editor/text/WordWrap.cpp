#include "editor/text/WordWrap.h"

#include <algorithm>

qsizetype WrapCut(QStringView line, int limit) {
    qsizetype cut = 0;
    for (qsizetype blank; (blank = line.indexOf(u' ', cut)) >= 0 && blank + 1 < limit;)
        cut = blank + 1;
    if (cut > 0)
        return cut;
    cut = std::min<qsizetype>(limit, line.size());
    const bool inPair = cut > 1 && cut < line.size() && line[cut].isLowSurrogate();
    return inPair && line[cut - 1].isHighSurrogate() ? cut - 1 : cut;
}

void TWordWrap::Wrap(TAdvMemoStrings& store, int limit) {
    FWWList.Clear();
    std::vector<string> rows;
    rows.reserve(size_t(store.Count()));
    for (int i = 0; i < store.Count(); ++i) {
        QStringView rest = store.Get(i);
        while (limit > 0 && rest.size() > limit) {
            const qsizetype cut = WrapCut(rest, limit);
            rows.push_back(rest.left(cut).toString());
            rest = rest.mid(cut);
            FWWList.Add(Integer(rows.size()));
        }
        rows.push_back(rest.size() == store.Get(i).size() ? store.Get(i) : rest.toString());
    }
    store.DestroyLineProps();
    if (limit <= 0)
        return;
    store.ReplaceLines(rows);
    for (int i = 0; i < FWWList.Count(); ++i)
        store.NeedLineProp(FWWList[i]).Wrapped = true;
}

void TWordWrap::Unwrap(TAdvMemoStrings& store) {
    FWWList.Clear();
    std::vector<string> lines;
    TAdvMemoStrings::TLineProps props;
    std::vector<TLineObject*> objects;
    for (int i = 0; i < store.Count(); ++i) {
        TLineObject* object = store.GetObject(i);
        auto prop = store.TakeLineProp(i);
        const bool wrapped = prop != nullptr && prop->Wrapped;
        if (prop)
            prop->Wrapped = false;
        if (wrapped)
            FWWList.Add(i);
        if (wrapped && !lines.empty()) {
            lines.back().append(store.Get(i));
            continue;
        }
        lines.push_back(store.Get(i));
        props.push_back(std::move(prop));
        objects.push_back(object);
    }
    store.ReplaceLines(lines);
    for (size_t i = 0; i < props.size(); ++i) {
        store.SetLineProp(int(i), std::move(props[i]));
        store.PutObject(int(i), objects[i]);
    }
}

std::vector<string> WholeLines(const TAdvMemoStrings& store) {
    std::vector<string> lines;
    lines.reserve(size_t(store.Count()));
    for (int i = 0; i < store.Count(); ++i) {
        if (store.IsContinuation(i) && !lines.empty())
            lines.back() += store.Get(i);
        else
            lines.push_back(store.Get(i));
    }
    return lines;
}

int RowOfLine(const TAdvMemoStrings& store, int line) {
    int row = 0;
    for (int next = 1; next < store.Count() && line > 0; ++next) {
        if (store.IsContinuation(next))
            continue;
        row = next;
        --line;
    }
    return row;
}
