#pragma once
// A file as libqpdf's input: read through a descriptor of ours, never mapped into memory, since a file that
// somebody truncates would then end the process.
//
// Reading bounds itself: hostile files make repair read them over and over, and holes of sparse files, which
// cost nobody anything, are passed over where nothing can be found in them.
#include "base/Text.h"

#include <qpdf/InputSource.hh>

#include <memory>
#include <sys/stat.h>

class TSourceStore;

class TFileInput : public InputSource {
public:
    /// Opens a regular file for reading. Raises EFileError. With a descriptor, `path` is only the name of a
    /// file that is open already; it stays the caller's.
    explicit TFileInput(const string& path, int descriptor = NotOpen);
    static constexpr int NotOpen = -1;
    ~TFileInput() override;

    /// The file as it was when it was opened.
    [[nodiscard]] const struct stat& Info() const { return FInfo; }
    [[nodiscard]] int Descriptor() const { return FDescriptor; }
    /// Bytes that are there: holes of a sparse file aren't.
    [[nodiscard]] qint64 StoredBytes() const { return FStored; }
    /// Another piece of work begins, which may read the file a few dozen times over, as repair does, but not
    /// without end.
    void GrantReading();
    /// libqpdf takes a read that fails for damage. Raises EFileError if one did, or if the file has become
    /// shorter meanwhile, or EPDFError if the allowance was used up; what was made from it must not be
    /// published then.
    void RequireSound() const;
    /// Goes on reading from a copy in the store, and lets go of the file. Raises EFileError; then nothing has
    /// changed.
    void MoveTo(std::shared_ptr<TSourceStore> store);

    qpdf_offset_t findAndSkipNextEOL() override;
    [[nodiscard]] std::string const& getName() const override { return FName; }
    qpdf_offset_t tell() override { return FPos; }
    void seek(qpdf_offset_t offset, int whence) override;
    void rewind() override { FPos = 0; }
    size_t read(char* to, size_t length) override;
    void unreadCh(char /*ch*/) override { --FPos; }

private:
    [[nodiscard]] bool InWindow() const {
        return FPos >= FWindowStart && FPos < FWindowStart + qpdf_offset_t(FWindow.size());
    }
    bool FillWindow();
    [[nodiscard]] qpdf_offset_t NextData() const;
    void Charge(size_t bytes);
    size_t ReadAt(char* to, size_t length, qpdf_offset_t offset);

    string FPath;
    std::string FName; // base name, for warnings
    int FDescriptor = -1;
    std::shared_ptr<TSourceStore> FStore; // that the descriptor belongs to; null where it is the file's
    qpdf_offset_t FStart = 0;             // of the file behind the descriptor
    struct stat FInfo {};
    qint64 FStored = 0;
    qint64 FAllowance = 0; // bytes that may still be read
    qpdf_offset_t FPos = 0;
    qpdf_offset_t FWindowStart = 0;
    std::string FWindow;
    int FError = 0;
};
