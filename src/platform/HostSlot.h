#pragma once
// Where the one host of a kind is registered, and what answers as long as there is none.
#include <atomic>

/// Any thread may ask. A registered host is borrowed; whoever works with it keeps it when it is taken away.
template <class THost, class TWithout> class THostSlot {
public:
    [[nodiscard]] THost& Get() {
        THost* host = FHost.load();
        return host ? *host : FWithout;
    }
    void Set(THost* host) { FHost.store(host); }

private:
    std::atomic<THost*> FHost = nullptr;
    TWithout FWithout;
};
