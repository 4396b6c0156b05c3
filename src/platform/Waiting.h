#pragma once
// Waiting for one of several objects, the first in order winning.
#include "platform/Descriptor.h"

#include <initializer_list>

class TWaitable {
public:
    virtual ~TWaitable() = default;
    /// Readable when a look with Take() is worth while.
    [[nodiscard]] virtual int Descriptor() const = 0;
    /// True if the object is signalled; never waits. A successful wait does what this does, so an
    /// auto-reset object loses its signal here.
    [[nodiscard]] virtual bool Take() = 0;
};

/// An auto-reset event, at first not signalled. Set() may come from any thread.
class TEvent : public TWaitable {
public:
    /// Raises Exception when the system has no descriptor left.
    TEvent();
    void Set();
    [[nodiscard]] int Descriptor() const override { return FCounter.Number(); }
    [[nodiscard]] bool Take() override;

private:
    TDescriptor FCounter;
};

inline constexpr int WaitForever = -1;
inline constexpr int WaitTimeout = -1;
inline constexpr int WaitFailed = -2;

/// Waits until one of `objects` is signalled and returns its index, the lowest where there are several;
/// otherwise WaitTimeout or WaitFailed. `timeoutMs` may be WaitForever.
[[nodiscard]] int WaitForMultipleObjects(std::initializer_list<TWaitable*> objects, int timeoutMs);

/// True if `object` was signalled within the time.
[[nodiscard]] bool WaitForSingleObject(TWaitable& object, int timeoutMs);
