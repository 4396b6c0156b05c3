#pragma once
// A file that appears under its final name only when it is whole.
//
// The contents go to a hidden temporary in the final folder, which nobody else may read, reach the disk, and
// are then published in one step. The temporary is locked while its writer lives, and named after its run for
// file systems without locks, so that those of dead processes can be told and swept; its name is short, so a
// final name of 255 bytes works.
#include "base/Folder.h"
#include "base/OutputFile.h"

class TPartFile : public TOutputFile {
public:
    /// Makes the temporary in the folder of `finalPath`. Raises EFileError, as everything here does.
    explicit TPartFile(const string& finalPath);
    /// The same in a folder that is held open.
    TPartFile(TFolderPtr folder, const string& name);
    /// Removes what was not published.
    ~TPartFile() override;
    TPartFile(const TPartFile&) = delete;
    TPartFile& operator=(const TPartFile&) = delete;

    [[nodiscard]] const TFolder& Folder() const { return *FFolder; }
    /// In that folder, until it is published.
    [[nodiscard]] const QByteArray& PartName() const { return FTemporary; }
    /// Publishes with the permission bits of an open file or of a path; one that is missing changes nothing.
    /// Without any, the process's own mask decides.
    void TakeModeOf(int source);
    void TakeModeOf(const string& path);

    // Publishing brings the contents to the disk where Flush() hasn't yet.
    /// Publishes under the final name, replacing what is there: a file or a link, never anything else that
    /// has the name (a folder, device, FIFO or socket raises).
    void PublishReplacing();
    /// Publishes under the final name only if nothing has it. False: the name is taken, and the caller may
    /// SetFinalName to another in the same folder and try again.
    [[nodiscard]] bool PublishNew();
    void SetFinalName(const string& name) { FPath = FFolder->Path() + name; }
    /// Publishing ends with the folder's new entry on the disk, unless the caller sees to that, so that one
    /// wait can serve many files.
    void LeaveFolderSync() { FSyncFolder = false; }

private:
    void Create();
    [[nodiscard]] bool Lock();
    void Published();

    TFolderPtr FFolder;
    QByteArray FTemporary; // empty once published
    int FMode = -1;
    bool FSyncFolder = true;
};

/// Publishes `file` under its final name or, where that is taken, under the free name that asking
/// UniqueFileName again and again gives; `file` says which. Raises EFileError and ENameError; nothing is then
/// published.
void PublishFree(TPartFile& file);

/// Removes the temporaries in `folder` that dead processes left. One of a host of which nothing is known, on
/// a file system without locks, goes when it is a day old.
void SweepPartFiles(const TFolder& folder);
