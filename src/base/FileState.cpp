#include "base/FileState.h"

namespace {

qint64 Nanoseconds(const timespec& time) {
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

} // namespace

TFileState StateOf(const struct stat& info) {
    return {info.st_dev, info.st_ino, info.st_size, Nanoseconds(info.st_mtim), Nanoseconds(info.st_ctim)};
}

bool TFileState::SameContents(const TFileState& other) const {
    return Device == other.Device && Inode == other.Inode && Size == other.Size &&
           ModifyTime == other.ModifyTime;
}
