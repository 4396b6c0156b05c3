#pragma once
// What somebody who mistyped a name may have meant.
#include "base/Text.h"

#include <QStringList>

/// The candidate that is fewest letters away from `name`, regardless of the case of A to Z; empty where none
/// is near: at most a third of the name's letters may be wrong, missing or too many, or two swapped.
[[nodiscard]] string NearestName(const string& name, const QStringList& candidates);

/// `, did you mean "Angle"?`, or empty where no candidate is near.
[[nodiscard]] string DidYouMean(const string& name, const QStringList& candidates);
