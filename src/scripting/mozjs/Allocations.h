#pragma once
// What the script library takes by malloc. It has no bound on that: its own limit counts the cells of its
// heap, and of the memory behind them a script could have all there is, in a single call. So the library's
// references to malloc and its kin are made to lead here, where they are counted, and where a large request
// beyond the limit of the thread's script gets a null, which the library answers with its "out of memory".
//
// Small requests are always granted: here and there the library ends the process where it is refused one.
// Those of them that lead beyond the limit are noticed as soon as the script can be interrupted.
#include <cstddef>
#include <functional>

namespace Allocations {

/// Once a process, before a context is made. Raises Exception where the library's references aren't found.
void Watch();

/// Bytes that the library holds, for all engines of the process.
[[nodiscard]] size_t Held();

/// Has the allocator of the program give what is free to the system.
void GiveBack();

/// What holds on this thread while it lives.
class TLimit {
public:
    /// `noticed` is called within an allocation, once the library holds more than the level that was set
    /// last.
    explicit TLimit(std::function<void()> noticed);
    ~TLimit();
    TLimit(const TLimit&) = delete;
    TLimit& operator=(const TLimit&) = delete;

    /// Bytes beyond which large requests are refused, and beyond which the next one is noticed.
    void Set(size_t refused, size_t noticed);

private:
    friend struct THooks;
    const std::function<void()> FNoticed;
    size_t FRefusedBeyond = ~size_t(0);
    size_t FNoticedBeyond = ~size_t(0);
    TLimit* const FOuter;
};

} // namespace Allocations
