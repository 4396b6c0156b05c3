#pragma once
// The running numbers of stamp texts: the macro <BN:format:digits:start:alternate>, and the formats in which
// a number is shown. Integers are those of 32 bits; what goes beyond them is no integer.
#include "base/Text.h"

#include <QStringList>

namespace BatesLimits {
/// Greatest width of a padded number; a larger one counts as this.
inline constexpr int Digits = 255;
/// Roman numerals have no largest number, but above this one, of a thousand letters, it is shown in decimal.
inline constexpr int Roman = 1'000'000;
/// Different macros that one scheme may count; more stay in the texts as they are.
inline constexpr int Macros = 1000;
/// A text is left without its numbers where they would make it longer than this.
inline constexpr qsizetype ExpandedText = 1 << 20;
} // namespace BatesLimits

/// A number of a scheme: what its macro says and how far it has come.
struct TBates {
    Integer Format = 0; ///< 0 decimal, 1 "a b c", 2 "A B C", 3 "i ii iii", 4 "I II III"
    Integer Digits = 6; ///< least width of a decimal number
    Integer Start = 1;
    bool Alternate = false; ///< counts by 2
    Integer CurNum = 1;
    bool operator==(const TBates&) const = default;
};

namespace BatesNumbers {

/// Reads a line "macro=current" or a macro. What can't be read has its default. The closing ">" of a bare
/// macro belongs to its last part on purpose, so a bare macro never alternates; lists have lines only.
[[nodiscard]] TBates Parse(const string& text);

/// Puts the number `n` into `result`. Format 4 alone appends to what the variable holds: schemes in use
/// count on it, so a caller hands in the same variable for each line of a list.
void Format(const TBates& bates, Integer n, string& result);

/// The macros of a text in upper case, in order and as often as they stand there, valid or not.
[[nodiscard]] QStringList MacrosOf(const string& text);
/// Whether a macro says something in each of its four parts that can be used.
[[nodiscard]] bool IsValid(const string& macro);

} // namespace BatesNumbers
