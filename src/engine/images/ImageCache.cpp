#include "engine/images/ImageCache.h"

#include "engine/images/ImageFile.h"

#include <ctime>
#include <sys/stat.h>

namespace {

qint64 Nanoseconds(const timespec& time) {
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

} // namespace

TFileStamp::TFileStamp(const struct stat& info)
    : Device(info.st_dev), Inode(info.st_ino), Size(info.st_size), Modified(Nanoseconds(info.st_mtim)),
      Changed(Nanoseconds(info.st_ctim)) {}

bool TFileStamp::IsFresh() const {
    constexpr qint64 Tick = 20'000'000;      // Linux takes the time of its last tick, 1 to 10 ms ago
    constexpr qint64 Coarse = 2'000'000'000; // the coarsest file systems, where all times are full seconds
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const bool coarse = Modified % 1'000'000'000 == 0 && Changed % 1'000'000'000 == 0;
    return Nanoseconds(now) - std::max(Modified, Changed) < (coarse ? Coarse : Tick);
}

std::shared_ptr<const TImageFile> TImageCache::Find(const string& path, const TFileStamp& stamp) {
    const std::lock_guard lock(FMutex);
    const auto entry = FEntries.find(path);
    if (entry == FEntries.end() || entry->Stamp != stamp)
        return {};
    entry->LastUse = ++FUses;
    return entry->Image.lock();
}

void TImageCache::Add(const string& path, const TFileStamp& stamp,
                      const std::shared_ptr<const TImageFile>& image, qint64 bytes) {
    if (stamp.IsFresh())
        return;
    const std::lock_guard lock(FMutex);
    FEntries.insert(path, {stamp, bytes, ++FUses, image, bytes <= FLimit ? image : nullptr});
    Trim();
}

void TImageCache::Trim() {
    erase_if(FEntries, [](const auto& pair) { return pair.value().Image.expired(); });
    for (;;) {
        qint64 kept = 0;
        auto oldest = FEntries.end();
        for (auto entry = FEntries.begin(); entry != FEntries.end(); ++entry) {
            if (!entry->Kept)
                continue;
            kept += entry->Bytes;
            if (oldest == FEntries.end() || entry->LastUse < oldest->LastUse)
                oldest = entry;
        }
        if (kept <= FLimit)
            return;
        oldest->Kept.reset();
    }
}
