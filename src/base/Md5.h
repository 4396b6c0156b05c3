#pragma once
// The digest that tells whether a configuration file really changed. No protection against forgery.
#include "base/Text.h"

#include <array>

class TMD5Hash {
public:
    using MD5Digest = std::array<quint8, 16>;

    /// The digest of a file's contents; raises EFileError.
    [[nodiscard]] static MD5Digest MD5File(const string& fileName);
    [[nodiscard]] static bool MD5Match(const MD5Digest& a, const MD5Digest& b) { return a == b; }
};
