#pragma once
// Data as flate streams hold it, and back, a whole piece at once.
#include <optional>
#include <string>
#include <string_view>

/// Data as a flate stream holds it. Small data is what it is made for: no state is kept, nothing is written
/// twice.
[[nodiscard]] std::string Deflated(std::string_view data);
/// None where the data is damaged or more than `most` bytes.
[[nodiscard]] std::optional<std::string> Inflated(std::string_view data, size_t most);
