#pragma once
#include "base/Exceptions.h"

#include <functional>

/// The message of the exception that the call raises; empty if it raises none.
[[nodiscard]] inline string RaisedBy(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& e) {
        return e.Message();
    }
    return {};
}
