#pragma once
// A file that appears under its final name only when it is whole.
//
// The contents go to a hidden temporary in the final folder, reach the disk, and are then published in one
// step. The temporary is locked while its writer lives, so that those of dead processes can be told and
// swept; its name has a fixed short length, so a final name of 255 bytes works.
#include "base/Text.h"

#include <memory>

class TPartFile {
public:
    /// Makes the temporary in the folder of `finalPath`. Raises EFileError, as everything here does.
    explicit TPartFile(const string& finalPath);
    /// Removes what was not published.
    ~TPartFile();
    TPartFile(const TPartFile&) = delete;
    TPartFile& operator=(const TPartFile&) = delete;

    [[nodiscard]] int Descriptor() const { return FDescriptor; }
    void Write(const void* data, size_t size);
    /// Appends all of `source`, from its beginning, without taking it through user memory where the file
    /// systems can do that. Returns the number of bytes.
    qint64 WriteAllOf(int source);
    /// Gives the file the permission bits of an open file or of a path; one that is missing changes nothing.
    void TakeModeOf(int source);
    void TakeModeOf(const string& path);

    /// Has what was written reach the disk; publishing does so too.
    void Flush();
    /// Publishes under the final name, replacing what is there.
    void PublishReplacing();
    /// Publishes under the final name only if nothing has it. False: the name is taken, and the caller may
    /// SetFinalPath to another in the same folder and try again.
    [[nodiscard]] bool PublishNew();
    void SetFinalPath(const string& path) { FFinalPath = path; }

private:
    void Create();
    qint64 WriteByReading(int source, qint64 offset);
    void Published();

    string FFinalPath;
    QByteArray FTemporary; // empty once published
    int FDescriptor = -1;
    bool FFlushed = false;
};

/// Removes the temporaries in `folder` that nobody holds: those of processes that died.
void SweepPartFiles(const string& folder);

enum class FileSync { Off, On };
/// Off leaves out the waits for the disk, for measuring only: a power failure could then lose files.
void SetFileSync(FileSync mode);
