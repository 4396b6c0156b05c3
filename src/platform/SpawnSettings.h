#pragma once
// What a program that is started finds: signals as they come by default, none of them blocked, nothing to
// read.
#include <spawn.h>

enum class TProcessGroup { OfParent, OfItsOwn };

/// For posix_spawn(3); callers add what else there is to say.
class TSpawnSettings {
public:
    explicit TSpawnSettings(TProcessGroup group);
    ~TSpawnSettings();
    TSpawnSettings(const TSpawnSettings&) = delete;
    TSpawnSettings& operator=(const TSpawnSettings&) = delete;

    posix_spawnattr_t Attributes{};
    posix_spawn_file_actions_t Files{};
};
