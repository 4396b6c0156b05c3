// Loading and saving the line store, with what each does to the control.
#include "editor/text/LineStore.h"

#include <algorithm>

void TAdvMemoStrings::LoadThroughMemo(const std::function<void()>& load, ResetStates states) {
    Memo->ClearSelection();
    Memo->ClearUndo();
    Memo->MoveCaret(0, 0);
    Memo->LoadBegins();
    int longest = 0;
    const auto measure = [&] {
        Memo->RowsTouched(-1);
        Memo->MoveCaret(0, 0);
        // Add has replaced the tabs already.
        for (int i = 0; i < Count(); ++i)
            longest = std::max(longest, int(Get(i).size()));
    };
    try {
        load();
    } catch (...) {
        measure();
        Memo->LoadEnds(longest);
        throw;
    }
    measure();
    Memo->LoadEnds(longest);
    Memo->UpdateWrap();
    Memo->AutoCodeFold();
    for (int i = 0; states == ResetStates::Yes && i < Count(); ++i) {
        if (TLineProp* prop = GetLineProp(i))
            prop->Modified = lmUnmodified;
    }
    Memo->RefreshControl();
}

void TAdvMemoStrings::LoadFromFile(const string& name) {
    if (Memo)
        LoadThroughMemo([&] { TStringList::LoadFromFile(name); }, ResetStates::Yes);
    else
        TStringList::LoadFromFile(name);
}

void TAdvMemoStrings::LoadFromStream(QIODevice& stream) {
    if (Memo)
        LoadThroughMemo([&] { TStringList::LoadFromStream(stream); }, ResetStates::No);
    else
        TStringList::LoadFromStream(stream);
}

void TAdvMemoStrings::TrimTrailingBlanks() {
    const TStringsUpdate update(*this);
    for (int i = 0; i < Count(); ++i) {
        const string& line = Get(i);
        qsizetype end = line.size();
        while (end > 0 && line[end - 1] == u' ')
            --end;
        if (end < line.size())
            Put(i, line.left(end));
    }
}

void TAdvMemoStrings::SaveToFile(const string& name) {
    const bool wrapped = Memo != nullptr && Memo->WordWrapOn();
    if (wrapped)
        Memo->Unwrap();
    const auto wrapAgain = [&] {
        if (wrapped)
            Memo->Wrap();
    };
    try {
        TrimTrailingBlanks();
        TStringList::SaveToFile(name);
    } catch (...) {
        wrapAgain();
        throw;
    }
    wrapAgain();
    MarkSaved();
}

void TAdvMemoStrings::SaveToStream(QIODevice& stream) {
    TStringList::SaveToStream(stream);
    MarkSaved();
}

void TAdvMemoStrings::MarkSaved() {
    if (!Memo)
        return;
    const TStringsUpdate update(*this);
    for (int i = 0; i < Count(); ++i) {
        TLineProp* prop = GetLineProp(i);
        if (prop && prop->Modified == lmModified)
            prop->Modified = lmSaved;
    }
    Memo->Repaint();
}
