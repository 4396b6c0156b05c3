#include "agent/TurnLog.h"

TTurnLog::~TTurnLog() {
    TakePlace();
    End();
}

void TTurnLog::End() {
    if (FLast == nullptr)
        return;
    if (!FDiffers && FKeys.size() != FLast->size())
        for (const TLine& line : std::exchange(FRepeated, {}))
            Write(line.first);
    if (!FKeys.isEmpty())
        *FLast = FKeys;
    FLast = nullptr;
}

void TTurnLog::Announce(QChar frame, const string& text, const string& key) {
    const string border = TRunLog::Border(frame);
    FFrame = {{border, border}, {text, key}, {border, border}};
}

void TTurnLog::Begin() {
    for (const TLine& line : std::exchange(FFrame, {}))
        Put(line);
}

void TTurnLog::Line(const string& text) {
    Begin();
    Put({text, text});
}

void TTurnLog::TakePlace() {
    FInPlace = true;
    for (const string& text : std::exchange(FWaiting, {}))
        FLog.Line(text);
}

void TTurnLog::Put(const TLine& line) {
    FKeys.append(line.second);
    if (FLast == nullptr || FDiffers) {
        Write(line.first);
        return;
    }
    FRepeated.append(line);
    if (FLast->value(FKeys.size() - 1) == line.second)
        return;
    FDiffers = true;
    for (const TLine& held : std::exchange(FRepeated, {}))
        Write(held.first);
}

void TTurnLog::Write(const string& text) {
    FWritten = true;
    if (FInPlace)
        FLog.Line(text);
    else
        FWaiting.append(text);
}
