#pragma once
// The binding of actions to methods, by names alone. It gives four outcomes, none of them a special case:
// every parameter has a source and the method runs; there is no method of that name and nothing happens; a
// parameter has no source and an exception names it; a parameter finds the action's inherited `Name` or
// `Tag`.
#include "base/Reflection.h"

#include <functional>

/// Calls on the receiver every method of `receiverType` that is named like the class of `action` from the
/// 11th character on ("TPDFActionAddText" calls AddText), with the members of `action` that bear the names of
/// its parameters. `receiver` is asked once per call, after all arguments have been found. Results are
/// dropped; one that is an object nobody owns is parked (scripting/ParkedDocuments.h). Exceptions of the
/// method pass.
void InvokeByClassName(const QObject& action, const QMetaObject& receiverType,
                       const std::function<QObject&()>& receiver);

/// What becomes of such a call.
enum class TBinding {
    Calls,   ///< a method, with an argument for each parameter
    Nothing, ///< there is no method of that name
    Raises   ///< a parameter has no source
};
[[nodiscard]] TBinding BindingOf(const QMetaObject& action, const QMetaObject& receiverType);
