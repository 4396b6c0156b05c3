#include "platform/DescriptorLimit.h"

#include <atomic>
#include <sys/resource.h>

namespace {
std::atomic<rlim_t> FormerSoft = 0; // 0 while nothing was raised
} // namespace

void RaiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == limit.rlim_max)
        return;
    const rlim_t former = limit.rlim_cur;
    limit.rlim_cur = limit.rlim_max;
    if (::setrlimit(RLIMIT_NOFILE, &limit) == 0)
        FormerSoft.store(former);
}

void RestoreDescriptorLimit(pid_t program) {
    const rlim_t former = FormerSoft.load();
    rlimit limit{};
    if (former == 0 || ::prlimit(program, RLIMIT_NOFILE, nullptr, &limit) != 0)
        return;
    limit.rlim_cur = former;
    (void)::prlimit(program, RLIMIT_NOFILE, &limit, nullptr);
}
