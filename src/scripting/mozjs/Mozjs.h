#pragma once
// The script library's headers, and the border between its failures and our exceptions. Only the sources of
// this folder include it.
#include "base/Exceptions.h"

#include <jsapi.h>
#include <jsfriendapi.h>

#include <new>

/// A failure that the script library holds already, as the pending exception or as the end of the script.
struct EScriptPending {};

inline void Must(bool done) {
    if (!done)
        throw EScriptPending();
}
template <class T> T* Must(T* made) {
    if (made == nullptr)
        throw EScriptPending();
    return made;
}

/// Runs `body` and turns its exceptions into errors of the script, which can catch them there: a C++
/// exception must never cross the library's frames.
template <class TBody> bool Guarded(JSContext* cx, TBody body) noexcept {
    try {
        body();
        return true;
    } catch (const EScriptPending&) {
        return false;
    } catch (const std::bad_alloc&) {
        JS_ReportOutOfMemory(cx);
    } catch (const std::exception& e) {
        JS_ReportErrorUTF8(cx, "%s", Narrow(MessageOf(e)).constData());
    } catch (...) {
        JS_ReportErrorUTF8(cx, "Unknown failure.");
    }
    return false;
}
