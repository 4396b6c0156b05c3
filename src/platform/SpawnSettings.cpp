#include "platform/SpawnSettings.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

TSpawnSettings::TSpawnSettings(TProcessGroup group) {
    ::posix_spawnattr_init(&Attributes);
    ::posix_spawn_file_actions_init(&Files);
    sigset_t all;
    sigset_t none;
    ::sigfillset(&all);
    ::sigemptyset(&none);
    ::posix_spawnattr_setsigdefault(&Attributes, &all);
    ::posix_spawnattr_setsigmask(&Attributes, &none);
    ::posix_spawnattr_setpgroup(&Attributes, 0);
    const int own = group == TProcessGroup::OfItsOwn ? POSIX_SPAWN_SETPGROUP : 0;
    ::posix_spawnattr_setflags(&Attributes, short(POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | own));
    ::posix_spawn_file_actions_addopen(&Files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
}

TSpawnSettings::~TSpawnSettings() {
    ::posix_spawn_file_actions_destroy(&Files);
    ::posix_spawnattr_destroy(&Attributes);
}
