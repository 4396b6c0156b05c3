#pragma once
// The run log: one plain text file a day, ASCII, lines ended by CR LF. What is not ASCII, and control
// characters inside a text, become "?". Writing never raises: a log that can't be written must not stop the
// run. That it can't is told once.
#include "base/Text.h"

#include <QDateTime>
#include <QLocale>

class TRunLog {
public:
    /// Opens the file for one pass, appending; makes it and its folder where there is none.
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
    bool FWritten = false;
};

/// "dd-mmm-yyyy hh:mm:ss", the month's short name by the user's locale, the digits always ASCII.
[[nodiscard]] string LogTime(const QDateTime& time, const QLocale& locale = QLocale::system());
/// "yyyy.mm.dd.txt"
[[nodiscard]] string LogFileName(const QDate& date);
/// Deletes the day logs in `folder` that are older than `keepDays` days; 0 or less keeps all. Files of other
/// names stay.
void RemoveOldLogs(const string& folder, const QDate& today, int keepDays);
