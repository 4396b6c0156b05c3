#pragma once
// The number list of a scheme: lines "macro=current", the macro in upper case, where the current value is
// what the next stamped page shows. It is kept in comma format (bates/CommaText.h).
#include "bates/BatesNumbers.h"

namespace NumberList {

/// The macro of a line; empty for a line without "=".
[[nodiscard]] string MacroOf(const string& line);
[[nodiscard]] string LineOf(const string& macro, Integer current);

/// The list that fits `texts`, in the order in which their macros stand there, each once, without those
/// that aren't valid. A number goes on where the list `before` has it and never falls below its start;
/// the first line of `before` isn't looked at on purpose: the first number of a stored scheme begins anew
/// each time it is loaded, and schemes in use count on it. TFirst::GoesOn treats it like the others.
enum class TFirst { BeginsAnew, GoesOn };
[[nodiscard]] QStringList Build(const QStringList& texts, const QStringList& before,
                                TFirst first = TFirst::BeginsAnew);

/// Every number back on its start.
void Restart(QStringList& list);

/// Every number on by so many pages. Raises Exception where one has no next: no number is ever used twice
/// without a word.
void Advance(QStringList& list, int pages);

/// Where others may have moved the stored numbers on meanwhile: each number of `list` that is as it was in
/// `known`, the stored list as it was read, takes what `stored` has now. A number that `known` lacks was read
/// as its start. One that differs was set by its user, and stays.
void TakeStored(QStringList& list, const QStringList& known, const QStringList& stored);

enum class Shown { Start, Current };
/// The text with each macro of the list replaced, without regard to case.
[[nodiscard]] string Replace(string text, const QStringList& list, Shown shown);

} // namespace NumberList
