#pragma once
// Which file was at work when a run died, kept across runs: such a file is served after all others, and one
// that ended two runs by a fault in our own code is worked on no more.
//
// A note in a file that stays open says what is at work, at the cost of a small write into the page cache: a
// kill leaves it, and the next start reads it. The handler of fatal signals marks it.
#include "base/SourceFile.h"

#include <QMap>

class TWorkMarks {
public:
    /// Reads what runs before left in `folder`, which is made where it is missing; an empty name keeps
    /// nothing. Never raises: without the notes, all files are alike.
    explicit TWorkMarks(const string& folder);
    ~TWorkMarks();
    TWorkMarks(const TWorkMarks&) = delete;
    TWorkMarks& operator=(const TWorkMarks&) = delete;

    void Begin(const string& path, const TFileState& state);
    void End();

    /// There are any suspects.
    [[nodiscard]] bool Any() const { return !FSuspects.isEmpty(); }
    /// A run died over this very file, and nothing has become of it since.
    [[nodiscard]] bool IsSuspect(const string& path, const TFileState& state) const;
    /// How many runs ended in a fault of ours over it.
    [[nodiscard]] int Crashes(const string& path, const TFileState& state) const;
    /// Something has become of it.
    void Forget(const string& path);

private:
    struct TSuspect {
        TFileState State;
        int Crashes = 0;
    };
    [[nodiscard]] const TSuspect* Find(const string& path, const TFileState& state) const;
    void ReadNote();
    void Load();
    void Save() const;

    string FFolder;
    int FNote = -1;
    QMap<string, TSuspect> FSuspects; // by path
};

/// From here on a fatal signal (SIGSEGV, SIGBUS, SIGABRT, SIGILL, SIGFPE) marks the note of the file at work,
/// and then ends the process as it would have.
void MarkFatalSignals();
/// False in builds that tell of such faults in a way of their own, where the call does nothing.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool MarksFatalSignals = false;
#else
inline constexpr bool MarksFatalSignals = true;
#endif
