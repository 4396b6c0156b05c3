#pragma once
// A lock on a file that the system frees when its holder ends, however it ends.
#include "base/Text.h"
#include "platform/Descriptor.h"

#include <optional>

class TFileLock {
public:
    /// Nothing if another process, or another lock of this one, holds it. Makes the file, mode 01600, where
    /// it is missing and leaves it there: removing it could take it from under its next holder. Raises
    /// EFileError.
    [[nodiscard]] static std::optional<TFileLock> Try(const string& path);

private:
    explicit TFileLock(TDescriptor file) : FFile(std::move(file)) {}
    TDescriptor FFile;
};
