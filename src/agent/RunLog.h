#pragma once
// The run log: one plain text file a day, ASCII, lines ended by CR LF. What is not ASCII, and line breaks
// inside a text, become "?". Writing never raises: a log that can't be written must not stop the run.
#include "base/Text.h"

#include <QDateTime>

class TRunLog {
public:
    /// Opens the file for one pass, appending; makes it where there is none.
    explicit TRunLog(const string& fileName);
    ~TRunLog();
    TRunLog(const TRunLog&) = delete;
    TRunLog& operator=(const TRunLog&) = delete;

    /// Each line has left the program when this returns.
    void Line(const string& text);
    /// The line of 256 times `frame` that stands above and below some others.
    [[nodiscard]] static string Border(QChar frame);

private:
    void Complain(int error);

    string FFileName;
    int FDescriptor = -1;
};

/// "dd-mmm-yyyy hh:mm:ss", the month's short name by the user's locale.
[[nodiscard]] string LogTime(const QDateTime& time);
/// "yyyy.mm.dd.txt"
[[nodiscard]] string LogFileName(const QDate& date);
