#pragma once
// A file as libqpdf's input: read through a descriptor of ours, never mapped into memory, since a file that
// somebody truncates would then end the process.
#include "base/Text.h"

#include <qpdf/InputSource.hh>

#include <sys/stat.h>

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
    /// libqpdf takes a read that fails for damage. Raises EFileError if one did, or if the file has become
    /// shorter meanwhile; what was made from it must not be published then.
    void RequireSound() const;

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
    size_t ReadAt(char* to, size_t length, qpdf_offset_t offset);

    string FPath;
    std::string FName; // base name, for warnings
    int FDescriptor = -1;
    struct stat FInfo {};
    qpdf_offset_t FPos = 0;
    qpdf_offset_t FWindowStart = 0;
    std::string FWindow;
    int FError = 0;
};
