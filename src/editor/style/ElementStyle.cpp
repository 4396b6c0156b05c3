#include "editor/style/ElementStyle.h"

#include <algorithm>

TElementStyle::TElementStyle(TElementStyles* list) : FList(list) {
    if (list && list->FOwner)
        FBGColor = list->FOwner->BackgroundColor();
}

void TElementStyle::Assign(const TElementStyle& other) {
    TElementStyles* const list = FList;
    const Integer number = StyleNo;
    *this = other;
    FList = list;
    StyleNo = number;
    Changed();
}

void TElementStyle::Changed() {
    if (FList)
        FList->Changed();
}

void TElementStyle::SetKeyWords(const QStringList& words) {
    if (words == FKeyWords)
        return;
    FKeyWords = words;
    IndexKeyWords();
    Changed();
}

void TElementStyle::IndexKeyWords() {
    FExact.clear();
    FFolded.clear();
    FLongest = 0;
    for (const string& word : std::as_const(FKeyWords)) {
        FExact.insert(word);
        FFolded.insert(word.toLower());
        FLongest = std::max(FLongest, int(word.size()));
    }
}

bool TElementStyle::HoldsKeyWord(const string& word, Qt::CaseSensitivity sensitivity) const {
    if (word.size() > FLongest)
        return false;
    return sensitivity == Qt::CaseSensitive ? FExact.contains(word) : FFolded.contains(word.toLower());
}

TElementStyle& TElementStyles::Add() {
    FItems.push_back(std::make_unique<TElementStyle>(this));
    Changed();
    return *FItems.back();
}

void TElementStyles::Clear() {
    FItems.clear();
    Changed();
}

bool TElementStyles::IsWordBoundary(QChar c) const {
    return std::any_of(FItems.begin(), FItems.end(), [c](const auto& item) {
        switch (item->StyleType()) {
        case stSymbol:
            return item->Symbols().contains(c);
        case stBracket:
            return c == item->BracketEnd() || c == item->BracketStart();
        default:
            return false;
        }
    });
}

void TElementStyles::Changed() {
    ++FRevision;
    if (FOwner)
        FOwner->StylesChanged();
}
