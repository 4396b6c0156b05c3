#pragma once
// The lines of one folder's turn on their way into the run log. Some are held until it is known whether they
// are worth saying: those of a file that still waits for the same reason, and, where the folder wants it so,
// a block that repeats the folder's last one but for its times.
#include "agent/RunLog.h"

#include <QStringList>

#include <utility>

class TTurnLog {
public:
    /// `last` is the folder's last block, for comparing and for keeping this one; null writes every block.
    TTurnLog(TRunLog& log, QStringList* last) : FLog(log), FLast(last) {}
    ~TTurnLog() { End(); }
    TTurnLog(const TTurnLog&) = delete;
    TTurnLog& operator=(const TTurnLog&) = delete;

    /// The frame around the block's beginning, written with the first line, or by Begin(). Lines with a time
    /// are compared by `key`.
    void Announce(QChar frame, const string& text, const string& key);
    void Begin();
    void Line(const string& text);

    /// Holds the lines that follow until one of the next two.
    void Hold() { FHolding = true; }
    void Release();
    void Drop();

    /// What is still compared with the last block, and differs by ending early, is written.
    void End();
    /// Whether anything was written.
    [[nodiscard]] bool Written() const { return FWritten; }

private:
    using TLine = std::pair<string, string>; // text and key
    void Put(const TLine& line);
    void Write(const string& text);

    TRunLog& FLog;
    QStringList* FLast;
    QList<TLine> FFrame;    // not yet written
    QList<TLine> FHeld;     // by Hold
    QList<TLine> FRepeated; // equal to the last block so far
    QStringList FKeys;      // of this block
    bool FHolding = false;
    bool FDiffers = false;
    bool FWritten = false;
};
