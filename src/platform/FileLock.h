#pragma once
// A lock on a file that the system frees when its holder ends, however it ends.
#include "base/Text.h"
#include "platform/Descriptor.h"

#include <optional>

/// Whose processes may hold a lock: those of the user who made its file, or of all who may write its folder.
enum class TLockUsers { One, All };

class TFileLock {
public:
    /// Nothing if another process, or another lock of this one, holds it. Makes the file where it is missing
    /// and leaves it there: removing it could take it from under its next holder. Raises EFileError.
    [[nodiscard]] static std::optional<TFileLock> Try(const string& path, TLockUsers users = TLockUsers::One);

private:
    explicit TFileLock(TDescriptor file) : FFile(std::move(file)) {}
    TDescriptor FFile;
};
