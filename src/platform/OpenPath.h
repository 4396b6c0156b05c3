#pragma once
// Shows a file or a folder to the user with the desktop's own program for it. Without a desktop the journal
// names it.
#include "base/Text.h"

class TOpenPathHost {
public:
    virtual ~TOpenPathHost() = default;
    /// On the main thread; doesn't wait.
    virtual void Open(const string& path) = 0;
};

/// The registered host, or the one that writes to the journal.
[[nodiscard]] TOpenPathHost& OpenPathHost();
/// Not owned; null takes the registered one away.
void SetOpenPathHost(TOpenPathHost* host);
