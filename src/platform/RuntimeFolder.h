#pragma once
// The folder of this user's sockets and lock files, which client and server must both come to.
#include "base/Text.h"

/// Where to look, in this order. A place counts if it is a folder of this user.
struct TRuntimePlaces {
    string Session;  ///< $XDG_RUNTIME_DIR; ignored if empty or relative
    string PerUser;  ///< /run/user/<uid>, which exists even where a service's environment doesn't say so
    string Fallback; ///< made with mode 0700 where it is missing
};

/// Raises Exception if even the fallback can't be had, as when somebody else has made a thing of its name.
[[nodiscard]] string FindRuntimeFolder(const TRuntimePlaces& places);

/// The same with this process's places; the fallback is /tmp/morvane-<uid>. Without a trailing delimiter.
[[nodiscard]] string RuntimeFolder();
