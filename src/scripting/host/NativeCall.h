#pragma once
// The raw form of a call from a script, for a function that has to know its engine or looks at its arguments
// itself. Such a function has one parameter, of type TJSNativeCallParams.
#include "scripting/host/ScriptCore.h"

struct TJSNativeCallParams {
    TScriptCore* Context = nullptr;
    quintptr Count = 0;    ///< of the arguments
    quintptr Reserved = 0; ///< keeps the record at four machine words
    const TJSValue* Arguments = nullptr;
};

/// A value that is a string.
using TJSString = TJSValue;

[[nodiscard]] inline bool JSValIsString(const TJSValue& value) {
    return value.Core->IsString(value);
}
[[nodiscard]] inline TJSString JSValToJSString(const TJSValue& value) {
    return value;
}
[[nodiscard]] inline string JSStringToString(TScriptCore& context, const TJSString& text) {
    return context.TextOf(text);
}
