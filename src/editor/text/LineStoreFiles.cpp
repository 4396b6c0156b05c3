// Loading and saving the line store, with what each does to the control.
#include "editor/text/LineStore.h"
#include "editor/text/MemoSettings.h"
#include "editor/text/WordWrap.h"

#include <algorithm>

void TAdvMemoStrings::LoadThroughMemo(const std::function<void()>& load, ResetStates states) {
    Active()->LoadBegins();
    const auto end = [this] {
        TellRowsTouched(-1);
        Active()->GoToStart();
        int longest = 0;
        for (int i = 0; i < Count(); ++i) // Add has replaced the tabs already
            longest = std::max(longest, int(Get(i).size()));
        Active()->LoadEnds();
        for (TLineStoreOwner* owner : Owners)
            owner->Loaded(longest);
    };
    try {
        load();
    } catch (...) {
        end();
        throw;
    }
    end();
    Active()->ArrangeLines();
    for (int i = 0; states == ResetStates::Yes && i < Count(); ++i) {
        if (TLineProp* prop = GetLineProp(i))
            prop->Modified = lmUnmodified;
    }
    Refresh();
}

void TAdvMemoStrings::LoadFromFile(const string& name) {
    if (Active())
        LoadThroughMemo([&] { TStringList::LoadFromFile(name); }, ResetStates::Yes);
    else
        TStringList::LoadFromFile(name);
}

void TAdvMemoStrings::LoadFromStream(QIODevice& stream) {
    if (Active())
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
    const bool wrapped = Active() != nullptr && Active()->StoreSettings().FWordWrap != wwNone;
    TWordWrap wrap;
    if (wrapped)
        wrap.Unwrap(*this);
    const auto wrapAgain = [&] {
        if (wrapped)
            wrap.Wrap(*this, Active()->WrapLimit());
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
    if (!Active())
        return;
    const TStringsUpdate update(*this);
    for (int i = 0; i < Count(); ++i) {
        TLineProp* prop = GetLineProp(i);
        if (prop && prop->Modified == lmModified)
            prop->Modified = lmSaved;
    }
    Refresh();
}
