#include "engine/images/ImageCache.h"

#include "engine/images/ImageFile.h"

#include <ctime>

namespace {

/// Whether a further change could leave the state as it is, since file systems count time in steps.
bool IsFresh(const TFileState& state) {
    constexpr qint64 Second = 1'000'000'000;
    constexpr qint64 Tick = 20'000'000;   // Linux takes the time of its last tick, 1 to 10 ms ago
    constexpr qint64 Coarse = 2 * Second; // the coarsest file systems, where all times are full seconds
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const bool coarse = state.ModifyTime % Second == 0 && state.ChangeTime % Second == 0;
    return now.tv_sec * Second + now.tv_nsec - std::max(state.ModifyTime, state.ChangeTime) <
           (coarse ? Coarse : Tick);
}

} // namespace

std::shared_ptr<const TImageFile> TImageCache::Find(const string& path, const TFileState& stamp) {
    const std::lock_guard lock(FMutex);
    const auto entry = FEntries.find(path);
    if (entry == FEntries.end() || entry->Stamp != stamp)
        return {};
    entry->LastUse = ++FUses;
    return entry->Image.lock();
}

void TImageCache::Add(const string& path, const TFileState& stamp,
                      const std::shared_ptr<const TImageFile>& image, qint64 bytes) {
    if (IsFresh(stamp))
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
