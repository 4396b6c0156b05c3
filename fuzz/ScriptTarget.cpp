// A script: whatever its text, it ends, and the next one runs.
#include "engine/core/Permissions.h"
#include "fuzz/Target.h"
#include "scripting/host/Engine.h"

#include <condition_variable>

namespace {

/// Stops scripts that take too long, as the agent does when it stops.
class TDeadline {
public:
    void Begin() {
        const std::lock_guard lock(FLock);
        FDue = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
        FChanged.notify_all();
    }
    void End() {
        const std::lock_guard lock(FLock);
        FDue = Never;
        StopSignal().Lower();
    }

private:
    static constexpr auto Never = std::chrono::steady_clock::time_point::max();

    [[noreturn]] void Watch() {
        std::unique_lock lock(FLock);
        for (;;) {
            if (FDue == Never)
                FChanged.wait(lock);
            else if (FChanged.wait_until(lock, FDue) == std::cv_status::timeout && FDue != Never) {
                StopSignal().Raise();
                FDue = Never;
            }
        }
    }

    std::mutex FLock;
    std::condition_variable FChanged;
    std::chrono::steady_clock::time_point FDue = Never;
    std::thread FThread{[this] { Watch(); }};
};

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    static auto& deadline = *new TDeadline; // its thread ends with the process
    static TJSEngine engine(16 << 20);      // without files and programs: bytes are no friend
    static const bool ready = [] {
        engine.registerClasses({&TPDFDocPermissions::staticMetaObject});
        return true;
    }();
    Require(ready, "no classes");
    deadline.Begin();
    static_cast<void>(engine.Evaluate(TextOf(data, size), QStringLiteral("fuzz")));
    deadline.End();
    Require(engine.Evaluate(QStringLiteral("1"), QStringLiteral("next")), "the next script didn't run");
    return 0;
}
