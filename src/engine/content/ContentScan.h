#pragma once
// What a page's content leaves open at its end. Content of ours that follows must find the state that the
// page began with, and many producers don't restore it.
#include <string>
#include <string_view>
#include <vector>

struct TContentBalance {
    /// What closes that which is open, innermost first: the delimiter of a string that was cut off, "EI" of
    /// an inline image, "n" for an unpainted path, "ET" a text object, "EMC" marked content, "Q" a saved
    /// state.
    std::string Closing;
    /// The content leaves off within a string or an inline image, or nests beyond all reason.
    bool CutOff = false;
    /// Offsets of "Q" operators that restore nothing. Readers ignore them; behind a "q" of ours they would
    /// restore that.
    std::vector<size_t> ExcessRestores;
};

/// `content` is decoded. Survives any bytes.
[[nodiscard]] TContentBalance ScanContent(std::string_view content);
