#pragma once
// Copies and moves that lose nothing: a crash at any instant leaves the source, or a complete copy, or
// both. Every move is a copy and a delete, across volumes or not.
#include "base/Text.h"

/// What tells whether a path still leads to the contents that were read.
struct TFileIdentity {
    quint64 Device = 0;
    quint64 Inode = 0;
    qint64 Size = -1;
    qint64 ChangeTime = 0; ///< ctime in nanoseconds: copying tools can't set it
    bool operator==(const TFileIdentity&) const = default;
};

/// Copies the whole of `source` to `dest`, replacing what is there. Raises EFileError.
void CopyFileContents(const string& source, const string& dest);

/// A file that is worked on and then moved. It is held open from before the work to the end of the move, so
/// that what is moved is what was worked on, whatever happens to the name meanwhile.
class TSourceFile {
public:
    /// Raises EFileError; a file that has gone has the error ENOENT.
    explicit TSourceFile(const string& path);
    ~TSourceFile();
    TSourceFile(const TSourceFile&) = delete;
    TSourceFile& operator=(const TSourceFile&) = delete;

    /// The path still leads to the file that was opened, untouched since.
    [[nodiscard]] bool IsUnchanged() const;

    /// Copies the contents to `dest`, or where that name is taken to the free name that asking
    /// UniqueFileName again and again gives, then deletes the source. A file that was written to, renamed or
    /// replaced meanwhile stays as it is under its name; of one that was replaced or deleted the contents
    /// that were opened are still copied. Raises EFileError, and what UniqueFileName raises; the source is
    /// then untouched.
    void MoveTo(const string& dest);

private:
    [[nodiscard]] bool ContentsAreWhole() const;

    string FPath;
    int FDescriptor;
    TFileIdentity FOpened;
};
