#include "editor/text/LineStore.h"

#include "editor/text/MemoSettings.h"

#include <QStringList>

#include <algorithm>

string TabsToBlanks(const string& text, int tabSize) {
    if (!text.contains(u'\t'))
        return text;
    string blanks = text;
    return blanks.replace(u'\t', string(tabSize, u' '));
}

string TAdvMemoStrings::Detabbed(const string& text) const {
    return Active() ? TabsToBlanks(text, Active()->StoreSettings().FTabSize) : text;
}

void TAdvMemoStrings::TellRowsTouched(int index) {
    for (TLineStoreOwner* owner : Owners)
        owner->RowsTouched(index);
}

void TAdvMemoStrings::TellFoldsChanged() {
    for (TLineStoreOwner* owner : Owners)
        owner->FoldsChanged();
}

void TAdvMemoStrings::Refresh() {
    for (TLineStoreOwner* owner : Owners)
        owner->RefreshControl();
}

TLineObject* TAdvMemoStrings::GetObject(int index) const {
    if (!Holds(index))
        return nullptr;
    const TLineProp* prop = GetLineProp(index);
    return prop ? prop->FObject : Slot(index);
}

void TAdvMemoStrings::PutObject(int index, TLineObject* object) {
    if (!Holds(index))
        return;
    if (TLineProp* prop = GetLineProp(index))
        prop->FObject = object;
    else
        SetSlot(index, object);
}

int TAdvMemoStrings::DoAdd(const string& text) {
    if (!Active())
        return AddObject(text, nullptr);
    string whole = Detabbed(text);
    whole.remove(u'\n');
    int last = -1;
    for (const string& piece : whole.split(u'\r'))
        last = AddObject(piece, nullptr);
    return last;
}

int TAdvMemoStrings::AddObject(const string& text, TLineObject* object) {
    FListLengths.Add(Integer(text.size()));
    if (FNoObjCreate) // what was to be told has been told for all lines
        return RawAdd(text, nullptr);
    if (Journal)
        Journal->Replaces(Count(), 0, {text});
    TellRowsTouched(Count());
    auto prop = std::make_unique<TLineProp>();
    prop->FObject = object;
    prop->FListIndex = FLinesProp.size();
    FLinesProp.push_back(std::move(prop));
    return RawAdd(text, FLinesProp.back().get());
}

void TAdvMemoStrings::AddStrings(const TStringList& list) {
    if (!Active())
        return;
    const int count = list.Count(); // a list may be added to itself
    for (int i = 0; i < count; ++i) {
        const int row = Add(list.Get(i));
        PutObject(row, list.GetObject(i));
    }
    RebuildLengths();
    if (FLockCount == 0)
        Refresh();
}

void TAdvMemoStrings::Insert(int index, const string& text) {
    CheckIndex(index, Count() + 1);
    if (!Active()) {
        DoInsert(index, text);
        return;
    }
    Active()->ClearSelection();
    qsizetype start = 0;
    for (qsizetype end; (end = text.indexOf(QStringView(u"\r\n"), start)) >= 0; start = end + 2)
        DoInsert(index++, text.mid(start, end - start));
    DoInsert(index, text.mid(start));
    Active()->ClampCaret();
    Refresh();
}

void TAdvMemoStrings::InsertRows(int index, const std::vector<string>& lines) {
    CheckIndex(index, Count() + 1);
    std::vector<string> rows;
    std::vector<Integer> lengths;
    for (const string& line : lines) {
        rows.push_back(Detabbed(line));
        lengths.push_back(Integer(rows.back().size()));
    }
    if (Journal)
        Journal->Replaces(index, 0, rows);
    TellRowsTouched(index);
    FListLengths.Insert(std::min(index, FListLengths.Count()), lengths);
    for (TLineStoreOwner* owner : Owners)
        owner->RowsInserted(index, int(rows.size()));
    RawInsert(index, rows); // their TLineProps are made when first needed
}

void TAdvMemoStrings::RemoveRows(int index, int count) {
    if (Journal)
        Journal->Replaces(index, count, {});
    TellRowsTouched(index);
    if (index < FListLengths.Count())
        FListLengths.Delete(index, count);
    for (int i = 0; i < count; ++i)
        (void)TakeLineProp(index + i);
    for (TLineStoreOwner* owner : Owners)
        owner->RowsRemoved(index, count);
    RawDelete(index, count);
}

void TAdvMemoStrings::Delete(int index) {
    if (!Holds(index))
        return;
    if (Active())
        Active()->DeleteRow(index);
    else
        RemoveRows(index, 1);
}

void TAdvMemoStrings::Put(int index, const string& text) {
    if (!Active()) {
        RawPut(index, text);
        return;
    }
    CheckIndex(index, Count());
    const string line = Detabbed(text);
    if (index >= FListLengths.Count())
        FListLengths.Add(Integer(line.size()));
    else
        FListLengths.SetInteger(index, Integer(line.size()));
    if (TLineProp* prop = GetLineProp(index); prop && line != Get(index))
        prop->DropErrorInfo(); // what it pointed at may be elsewhere
    if (Journal && line != Get(index))
        Journal->Replaces(index, 1, {line});
    TellRowsTouched(index);
    RawPut(index, line);
}

void TAdvMemoStrings::Clear() {
    if (Journal && Count() > 0)
        Journal->Replaces(0, Count(), {});
    if (Active())
        Active()->GoToStart();
    TellRowsTouched(0);
    FListLengths.Clear();
    const TLineProps gone = std::move(FLinesProp); // lives until the slots that point to them are gone
    FLinesProp.clear();
    RawClear();
}

void TAdvMemoStrings::Assign(const TStringList& list) {
    if (&list == this)
        return;
    const TStringsUpdate update(*this);
    Clear();
    if (Active()) {
        AddStrings(list);
        return;
    }
    for (int i = 0; i < list.Count(); ++i)
        AddObject(list.Get(i), list.GetObject(i));
}

TAdvMemoStrings::TLineProps TAdvMemoStrings::ClearStrings() {
    TLineProps props = std::move(FLinesProp);
    FLinesProp.clear();
    FListLengths.Clear();
    TellRowsTouched(0);
    RawClear();
    return props;
}

void TAdvMemoStrings::ReplaceLines(const std::vector<string>& lines) {
    const TStringsUpdate update(*this);
    const TLineProps gone = ClearStrings();
    FNoObjCreate = true;
    FListLengths.Reserve(int(lines.size()));
    for (const string& line : lines)
        AddObject(line, nullptr);
    FNoObjCreate = false;
}

void TAdvMemoStrings::RebuildLengths() {
    FListLengths.Clear();
    FListLengths.Reserve(Count());
    for (int i = 0; i < Count(); ++i)
        FListLengths.Add(Integer(Get(i).size()));
}

void TAdvMemoStrings::SetUpdateState(bool updating) {
    FLockCount = updating ? FLockCount + 1 : std::max(0, FLockCount - 1);
    TStringList::SetUpdateState(updating);
}
