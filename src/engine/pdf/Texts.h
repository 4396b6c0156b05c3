#pragma once
// Texts of the engine layer that other modules show or compare with.
#include "base/Text.h"

namespace EngineTexts {
/// The display name of no scheme.
inline constexpr QStringView StrNone = u"[None]";
} // namespace EngineTexts
