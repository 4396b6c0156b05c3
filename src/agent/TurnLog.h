#pragma once
// The lines of one folder's turn on their way into the run log. Some wait: those of a turn that isn't the
// first of its pass any more's, until it is, and, where the folder wants it so, a block that repeats the
// folder's last one but for its times.
#include "agent/RunLog.h"

#include <QStringList>

#include <utility>

class TTurnLog {
public:
    /// `last` is the folder's last block, for comparing and for keeping this one; null writes every block.
    TTurnLog(TRunLog& log, QStringList* last) : FLog(log), FLast(last) {}
    ~TTurnLog();
    TTurnLog(const TTurnLog&) = delete;
    TTurnLog& operator=(const TTurnLog&) = delete;

    /// The frame around the block's beginning, written with the first line, or by Begin(). Lines with a time
    /// are compared by `key`.
    void Announce(QChar frame, const string& text, const string& key);
    void Begin();
    void Line(const string& text);

    /// No block that was begun before is still to be written: from here on, lines are written as they come.
    void TakePlace();
    /// What is still compared with the last block, and differs by ending early, is written.
    void End();
    /// Whether there was anything to write.
    [[nodiscard]] bool Written() const { return FWritten; }

private:
    using TLine = std::pair<string, string>; // text and key
    void Put(const TLine& line);
    void Write(const string& text);

    TRunLog& FLog;
    QStringList* FLast;
    QList<TLine> FFrame;    // not yet written
    QList<TLine> FRepeated; // equal to the last block so far
    QStringList FWaiting;   // for the block's place
    QStringList FKeys;      // of this block
    bool FDiffers = false;
    bool FWritten = false;
    bool FInPlace = false;
};
