#pragma once
// A file on its way: opened in its folder, worked on, claimed by a rename into a folder of the run's own, and
// settled by another rename where it belongs. Nothing of it is ever copied and deleted but where file systems
// meet, so what somebody still writes to it is never lost.
#include "base/ClaimFolder.h"
#include "base/FileState.h"

class TSourceFile {
public:
    /// Opens a regular file for reading, and neither follows a link nor waits for a FIFO. Raises EFileError:
    /// ENOENT where it has gone, ELOOP for a link, EINVAL for what is no file.
    TSourceFile(TFolderPtr folder, const string& name);
    /// A claimed file that wasn't settled goes back.
    ~TSourceFile();
    TSourceFile(const TSourceFile&) = delete;
    TSourceFile& operator=(const TSourceFile&) = delete;

    [[nodiscard]] int Descriptor() const { return FDescriptor; }
    [[nodiscard]] const string& Name() const { return FName; }
    [[nodiscard]] string Path() const { return FHome->Path() + FName; }
    [[nodiscard]] const TFileState& Opened() const { return FOpened; }
    /// The name still leads to the file that was opened, untouched since.
    [[nodiscard]] bool IsUnchanged() const;

    enum class TClaim {
        Claimed,
        Gone,    ///< somebody took it away: another agent, or its owner
        Changed, ///< it was written to or replaced; it lies under its name as it was
    };
    /// Takes the file out of its folder into `claims`, or where that lies on another file system into
    /// `nearby`, a claim folder in the file's own. Raises EFileError where it can't be renamed; it is then
    /// where it was.
    [[nodiscard]] TClaim Claim(TClaimFolder& claims, TClaimFolder& nearby);
    /// Where the claimed file will have to be copied to `target`: does so, so that what can fail fails before
    /// anything is published. Raises EFileError.
    void PrepareSettling(const TFolderPtr& target);
    /// Moves the claimed file to `target`, under its own name or the free one that UniqueFileName gives;
    /// never replaces. Returns the name. Raises EFileError and ENameError; the file is then claimed as
    /// before.
    string Settle(const TFolderPtr& target);
    /// Gives a claimed file its place in its folder back, never replacing: under the next free name where its
    /// own is taken. Where even that fails, the journal says so, and the next sweep of claim folders does it.
    void Unclaim();

private:
    [[nodiscard]] bool LiesUnchangedIn(const TFolder& folder, const TFileState& expected) const;
    void CopyTo(const TFolderPtr& target);
    string PublishCopy();

    TFolderPtr FHome;
    string FName;
    int FDescriptor;
    TFileState FOpened;
    TFolderPtr FClaimed;                    // the claim folder that holds it; null while it isn't claimed
    bool FCrossing = false;                 // process/ lies on another file system
    std::unique_ptr<class TPartFile> FCopy; // for a target there
};
