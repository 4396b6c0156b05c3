#pragma once
// Hidden windows: addresses to which any thread posts messages, received on the thread that made the window.
#include "base/Text.h"

#include <functional>
#include <memory>
#include <vector>

/// Number of a window, unique on this machine; 0 is none.
using TWindowHandle = quint64;

inline constexpr Cardinal WM_QUERYENDSESSION = 17;
inline constexpr Cardinal WM_COPYDATA = 74;

/// What a WM_COPYDATA message carries.
struct TCopyData {
    quint64 Kind = 0;
    NarrowString Bytes;
};

struct TMessage {
    Cardinal Number = 0;
    quint64 WParam = 0;
    qint64 LParam = 0;
    std::shared_ptr<const TCopyData> Data = nullptr; ///< null but for WM_COPYDATA
    qint64 Result = 0;                               ///< set by the receiver
};

/// Whether a component stands on a designer's form: then it makes no window and runs no thread.
enum class TDesigning { No, Yes };

class THiddenWindow {
public:
    using TWndProc = std::function<void(TMessage&)>;

    /// `wndProc` receives every message of the window; it may destroy the window.
    explicit THiddenWindow(TWndProc wndProc, const string& className = {});
    /// On the thread that made it. Messages still queued for it are dropped.
    ~THiddenWindow();
    THiddenWindow(const THiddenWindow&) = delete;
    THiddenWindow& operator=(const THiddenWindow&) = delete;

    [[nodiscard]] TWindowHandle Handle() const { return FHandle; }

private:
    TWindowHandle FHandle = 0;
};

/// The answer to messages that a window doesn't know: result 0.
void DefWindowProc(TMessage& message);

/// Queues the message for the window's thread; any thread. False if there is no such window or its
/// thread's queue is full.
bool PostMessage(TWindowHandle window, TMessage message);

/// Calls the window's procedure at once and returns its result; on the window's own thread only.
/// 0 if there is no such window.
qint64 SendMessage(TWindowHandle window, TMessage message);

/// The windows of this process that were made with that class name.
[[nodiscard]] std::vector<TWindowHandle> FindWindows(const string& className);
