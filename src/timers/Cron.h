#pragma once
// TumCron: a parsed cron mask, tested against the clock once a second. There is no next run time.
//
// A mask has six fields, separated by single blanks: second, minute, hour, day of month, month, day of week
// (0 is Sunday). A field is "*" or a list, by commas, of First, First-Last, First+Step, First-Last+Step.
// Fields that the mask doesn't reach match everything; an empty field, as between two blanks, matches
// nothing; a mask is never refused. Day of month and day of week must both match: there is no "either" rule.
#include "base/Text.h"
#include "platform/Clock.h"

#include <array>
#include <atomic>

enum TumCronGroups { crSec, crMin, crHour, crDay, crMonth, crDoW };

/// Bit N set: value N matches.
using TumCronGroup = quint64;

class TumCron {
public:
    static constexpr int GroupCount = crDoW + 1;
    static constexpr qsizetype MaskLimit = 255; ///< what is longer is cut
    static constexpr qsizetype TokenLimit = 63; ///< likewise for a field and an item

    /// Matches everything until Init.
    TumCron();
    /// While another thread asks IsCron, it may see some of the new fields together with some of the old.
    void Init(const string& mask);
    [[nodiscard]] bool IsCron(const TSystemTime& time) const;
    [[nodiscard]] TumCronGroup Group(TumCronGroups group) const;

private:
    std::array<std::atomic<TumCronGroup>, GroupCount> FGroups;
};
