#include "platform/ProcessLimits.h"

#include <QFile>

#include <algorithm>
#include <atomic>
#include <sys/resource.h>
#include <utility>

namespace {

std::atomic<rlim_t> FormerDescriptors = 0; // 0 while nothing was raised
std::atomic<rlim_t> FormerMemory = 0;      // 0 while nothing was limited

void SetMemoryLimit(rlim_t bytes) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_DATA, &limit) != 0)
        return;
    const rlim_t wanted = std::min(bytes, limit.rlim_max);
    if (std::exchange(limit.rlim_cur, wanted) != wanted)
        (void)::setrlimit(RLIMIT_DATA, &limit);
}

} // namespace

void RaiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == limit.rlim_max)
        return;
    const rlim_t former = limit.rlim_cur;
    limit.rlim_cur = limit.rlim_max;
    if (::setrlimit(RLIMIT_NOFILE, &limit) == 0)
        FormerDescriptors.store(former);
}

quint64 FormerDescriptorLimit() {
    return FormerDescriptors.load();
}

void SetFormerDescriptorLimit(quint64 former) {
    FormerDescriptors.store(former);
}

void RestoreDescriptorLimit(pid_t program) {
    const rlim_t former = FormerDescriptors.load();
    rlimit limit{};
    if (former == 0 || ::prlimit(program, RLIMIT_NOFILE, nullptr, &limit) != 0)
        return;
    limit.rlim_cur = former;
    (void)::prlimit(program, RLIMIT_NOFILE, &limit, nullptr);
}

void LimitMemory(quint64 bytes) {
    rlimit limit{};
    rlim_t none = 0;
    if (::getrlimit(RLIMIT_DATA, &limit) == 0)
        FormerMemory.compare_exchange_strong(none, limit.rlim_cur);
    SetMemoryLimit(bytes);
}

quint64 MemoryHeldBy(pid_t process) {
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("Pss:"))
            return line.mid(4).simplified().split(' ').first().toULongLong() << 10;
    return 0;
}

TFormerMemoryLimit::TFormerMemoryLimit() {
    rlimit limit{};
    if (FormerMemory.load() == 0 || ::getrlimit(RLIMIT_DATA, &limit) != 0)
        return;
    FLimited = limit.rlim_cur;
    SetMemoryLimit(FormerMemory.load());
}

TFormerMemoryLimit::~TFormerMemoryLimit() {
    if (FLimited != 0)
        SetMemoryLimit(FLimited);
}
