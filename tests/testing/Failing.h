#pragma once
// Lets file-system calls fail as full disks, poor file systems and other people make them fail.
#include "base/FaultPoint.h"

#include <string>
#include <vector>

/// While it lives, the calls of these names fail with an errno value, the first `spared` of them excepted.
struct TFailing {
    TFailing(const char* call, int error, int spared = 0)
        : TFailing(std::vector<std::string>{call}, error, spared) {}
    TFailing(std::vector<std::string> calls, int error, int spared = 0) {
        Calls = std::move(calls);
        Error = error;
        Spared = spared;
        Hits = 0;
        SetFaultHook(Answer);
    }
    ~TFailing() { SetFaultHook(nullptr); }
    TFailing(const TFailing&) = delete;
    TFailing& operator=(const TFailing&) = delete;
    /// How often one of them was made.
    [[nodiscard]] static int Made() { return Hits; }

private:
    static int Answer(const char* call) {
        for (const std::string& name : Calls)
            if (name == call)
                return ++Hits > Spared ? Error : 0;
        return 0;
    }
    static inline std::vector<std::string> Calls;
    static inline int Error = 0;
    static inline int Spared = 0;
    static inline int Hits = 0;
};
