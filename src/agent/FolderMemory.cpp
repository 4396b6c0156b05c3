#include "agent/FolderMemory.h"

#include <algorithm>

void TPause::Lengthen(qint64 now) {
    constexpr qint64 Shortest = 1000;
    constexpr qint64 Longest = 60'000;
    FLength = std::clamp(2 * FLength, Shortest, Longest);
    FUntil = now + FLength;
}
