#pragma once
// The library's side of PDF objects that callers hold.
#include "engine/outlines/Objects.h"
#include "engine/pdf/Qpdf.h"

struct TPDFObject::THandle {
    explicit THandle(const QPDFObjectHandle& object) : Object(object) {}
    QPDFObjectHandle Object;
};

/// Wraps `object`, in the class of its type where there is one.
[[nodiscard]] TPDFObjectPtr NewObject(const QPDFObjectHandle& object);
