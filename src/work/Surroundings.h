#pragma once
// Trouble of the surroundings: a full disk, a share that has gone, too many open files. It isn't the file's
// fault, so the file waits for better times instead of failing.
#include "base/Exceptions.h"

#include <cerrno>

class ESurroundings : public EFileError {
public:
    explicit ESurroundings(const EFileError& e)
        : EFileError(e.Message(), e.Error()), FOfReading(dynamic_cast<const EReadError*>(&e) != nullptr) {}
    /// The source couldn't be read.
    [[nodiscard]] bool OfReading() const { return FOfReading; }

private:
    bool FOfReading;
};

[[nodiscard]] inline bool IsSurroundings(int error) {
    switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EIO:
    case EROFS:
    case EMFILE:
    case ENFILE:
    case ENOMEM:
    case ESTALE:
    case ETIMEDOUT:
    case EACCES:
    case EPERM:
        return true;
    default:
        return false;
    }
}

/// Calls what touches our own files and folders; what is trouble of the surroundings comes out as such. Never
/// for what actions do.
template <class TCall> auto AmongSurroundings(TCall call) -> decltype(call()) {
    try {
        return call();
    } catch (const ESurroundings&) {
        throw;
    } catch (const EFileError& e) {
        if (IsSurroundings(e.Error()))
            throw ESurroundings(e);
        throw;
    }
}
