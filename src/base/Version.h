#pragma once
// Which version of the programs this is.
#include "base/Text.h"

/// As "0.1.0".
[[nodiscard]] string ProgramVersion();
