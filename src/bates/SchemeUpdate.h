#pragma once
// One change of a scheme file, on which several stores may work, in this process and in others: the file is
// locked, read as it is now, changed in memory, and replaced in one step. Whoever reads it meanwhile finds
// the old file whole.
//
// The lock is a file of its own beside the scheme file, ".NAME.lock", since the scheme file is replaced.
// Where the file system knows no locks, nothing is written: a number given twice is worse than none.
#include "bates/SchemeDocument.h"
#include "platform/FileLock.h"

class TPartFile;

class TSchemeUpdate {
public:
    /// Waits for the lock, a minute at most and until the agent stops, and reads the file. Raises EFileError,
    /// also for a file that can't be replaced or is none, EXmlError or Exception.
    explicit TSchemeUpdate(const string& fileName);
    /// Leaves the file as it was unless it was published.
    ~TSchemeUpdate();
    TSchemeUpdate(const TSchemeUpdate&) = delete;
    TSchemeUpdate& operator=(const TSchemeUpdate&) = delete;

    /// The file's contents; a document without schemes where there is no file yet.
    [[nodiscard]] TSchemeDocument& Document() { return *FDocument; }
    /// Brings the changed contents to the disk, beside the file: what could keep them from being written is
    /// met here. Raises EFileError or EXmlError.
    void Prepare();
    /// Replaces the file, behind Prepare(). Raises EFileError.
    void Publish();

private:
    string FFileName;
    TFileLock FLock;
    std::unique_ptr<TSchemeDocument> FDocument;
    std::unique_ptr<TPartFile> FPrepared;
};

/// The schemes of a file, none if it isn't there yet. Raises EFileError or EXmlError for one that can't be
/// read.
[[nodiscard]] std::unique_ptr<TSchemeDocument> ReadSchemes(const string& fileName);
