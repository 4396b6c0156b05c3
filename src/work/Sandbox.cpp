#include "work/Sandbox.h"

#include "actions/ActionList.h"
#include "actions/JavaScriptAction.h"
#include "base/Journal.h"
#include "base/Paths.h"

#include <QFile>
#include <QMetaProperty>
#include <QStringList>

#include <cerrno>
#include <fcntl.h>
#include <fontconfig/fontconfig.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// --- Landlock: which files (landlock(7)) ---

constexpr quint64 Reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;

/// Every right that the kernel can hold back: bits are added with its versions.
quint64 RightsOf(long version) {
    constexpr quint64 First = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
    constexpr quint64 Refer = LANDLOCK_ACCESS_FS_MAKE_SYM << 1;
    constexpr quint64 Truncate = Refer << 1;
    return First | (version >= 2 ? Refer : 0) | (version >= 3 ? Truncate : 0);
}

void Allow(int rules, const QByteArray& path, quint64 rights) {
    const int place = ::open(path.constData(), O_PATH | O_CLOEXEC);
    if (place < 0)
        return; // what isn't there needs no right
    struct stat info {};
    if (::fstat(place, &info) == 0 && !S_ISDIR(info.st_mode))
        rights &= ~quint64(LANDLOCK_ACCESS_FS_READ_DIR);
    const landlock_path_beneath_attr rule{rights, place};
    (void)::syscall(__NR_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    ::close(place);
}

/// Where libraries, their data, and fonts are.
QList<QByteArray> ReadablePlaces() {
    QList<QByteArray> places = {"/usr",
                                "/lib",
                                "/lib64",
                                "/etc/fonts",
                                "/etc/localtime",
                                "/etc/timezone",
                                "/etc/ld.so.cache",
                                "/proc/self",
                                "/sys/devices/system/cpu",
                                "/dev/urandom",
                                "/dev/random",
                                "/var/cache/fontconfig"};
    const QByteArray program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe")).toUtf8();
    const QByteArray folder = program.left(program.lastIndexOf('/'));
    places += {folder, folder + "/../lib/morvane"};
    const auto take = [&](FcStrList* list) {
        while (const FcChar8* path = FcStrListNext(list))
            places += reinterpret_cast<const char*>(path);
        FcStrListDone(list);
    };
    take(FcConfigGetFontDirs(nullptr));
    take(FcConfigGetCacheDirs(nullptr));
    return places;
}

bool EnterLandlock() {
    const long version = ::syscall(__NR_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return false;
    // Caches are written where they are missing, or each worker would look through all fonts anew.
    FcInit();
    const landlock_ruleset_attr attributes{RightsOf(version)};
    const int rules = int(::syscall(__NR_landlock_create_ruleset, &attributes, sizeof attributes, 0));
    if (rules < 0)
        return false;
    for (const QByteArray& place : ReadablePlaces())
        Allow(rules, place, Reading);
    Allow(rules, "/dev/null", Reading | LANDLOCK_ACCESS_FS_WRITE_FILE);
    const bool entered = ::syscall(__NR_landlock_restrict_self, rules, 0) == 0;
    ::close(rules);
    return entered;
}

// --- seccomp: which calls ---

/// Of a process that computes, allocates, and reads and writes what is open. No sockets, no programs, no
/// modes, names or owners of files, no other process.
constexpr int Allowed[] = {SCMP_SYS(access),
                           SCMP_SYS(arch_prctl),
                           SCMP_SYS(brk),
                           SCMP_SYS(clock_getres),
                           SCMP_SYS(clock_gettime),
                           SCMP_SYS(clock_nanosleep),
                           SCMP_SYS(close),
                           SCMP_SYS(copy_file_range),
                           SCMP_SYS(dup),
                           SCMP_SYS(dup2),
                           SCMP_SYS(dup3),
                           SCMP_SYS(epoll_create1),
                           SCMP_SYS(epoll_ctl),
                           SCMP_SYS(epoll_pwait),
                           SCMP_SYS(epoll_wait),
                           SCMP_SYS(eventfd2),
                           SCMP_SYS(exit),
                           SCMP_SYS(exit_group),
                           SCMP_SYS(faccessat),
                           SCMP_SYS(faccessat2),
                           SCMP_SYS(fadvise64),
                           SCMP_SYS(fallocate),
                           SCMP_SYS(fcntl),
                           SCMP_SYS(fdatasync),
                           SCMP_SYS(flock),
                           SCMP_SYS(fstat),
                           SCMP_SYS(fstatfs),
                           SCMP_SYS(fsync),
                           SCMP_SYS(ftruncate),
                           SCMP_SYS(futex),
                           SCMP_SYS(get_mempolicy),
                           SCMP_SYS(getcwd),
                           SCMP_SYS(getdents64),
                           SCMP_SYS(getegid),
                           SCMP_SYS(geteuid),
                           SCMP_SYS(getgid),
                           SCMP_SYS(getpid),
                           SCMP_SYS(getppid),
                           SCMP_SYS(getrandom),
                           SCMP_SYS(getrlimit),
                           SCMP_SYS(getrusage),
                           SCMP_SYS(gettid),
                           SCMP_SYS(gettimeofday),
                           SCMP_SYS(getuid),
                           SCMP_SYS(lseek),
                           SCMP_SYS(lstat),
                           SCMP_SYS(madvise),
                           SCMP_SYS(membarrier),
                           SCMP_SYS(memfd_create),
                           SCMP_SYS(mincore),
                           SCMP_SYS(mlock),
                           SCMP_SYS(mmap),
                           SCMP_SYS(mprotect),
                           SCMP_SYS(mremap),
                           SCMP_SYS(munmap),
                           SCMP_SYS(nanosleep),
                           SCMP_SYS(newfstatat),
                           SCMP_SYS(pipe2),
                           SCMP_SYS(poll),
                           SCMP_SYS(ppoll),
                           SCMP_SYS(prctl),
                           SCMP_SYS(pread64),
                           SCMP_SYS(preadv),
                           SCMP_SYS(prlimit64),
                           SCMP_SYS(pselect6),
                           SCMP_SYS(pwrite64),
                           SCMP_SYS(pwritev),
                           SCMP_SYS(read),
                           SCMP_SYS(readlink),
                           SCMP_SYS(readlinkat),
                           SCMP_SYS(readv),
                           SCMP_SYS(recvmsg),
                           SCMP_SYS(restart_syscall),
                           SCMP_SYS(rseq),
                           SCMP_SYS(rt_sigaction),
                           SCMP_SYS(rt_sigprocmask),
                           SCMP_SYS(rt_sigreturn),
                           SCMP_SYS(sched_getaffinity),
                           SCMP_SYS(sched_yield),
                           SCMP_SYS(select),
                           SCMP_SYS(sendfile),
                           SCMP_SYS(sendmsg),
                           SCMP_SYS(set_robust_list),
                           SCMP_SYS(set_tid_address),
                           SCMP_SYS(setrlimit),
                           SCMP_SYS(sigaltstack),
                           SCMP_SYS(stat),
                           SCMP_SYS(statfs),
                           SCMP_SYS(statx),
                           SCMP_SYS(sysinfo),
                           SCMP_SYS(tgkill),
                           SCMP_SYS(time),
                           SCMP_SYS(timerfd_create),
                           SCMP_SYS(timerfd_settime),
                           SCMP_SYS(uname),
                           SCMP_SYS(write),
                           SCMP_SYS(writev)};

/// Of a list that makes files under names that it gives.
constexpr int AllowedForFiles[] = {
    SCMP_SYS(chmod),    SCMP_SYS(fchmod),    SCMP_SYS(fchmodat), SCMP_SYS(link),   SCMP_SYS(linkat),
    SCMP_SYS(mkdir),    SCMP_SYS(mkdirat),   SCMP_SYS(open),     SCMP_SYS(openat), SCMP_SYS(rename),
    SCMP_SYS(renameat), SCMP_SYS(renameat2), SCMP_SYS(rmdir),    SCMP_SYS(unlink), SCMP_SYS(unlinkat)};

bool AddRules(scmp_filter_ctx filter, TReach reach) {
    bool added = true;
    const auto allow = [&](int call) {
        added = seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0 && added;
    };
    for (const int call : Allowed)
        allow(call);
    if (reach == TReach::Files) {
        for (const int call : AllowedForFiles)
            allow(call);
    } else { // Landlock of older kernels doesn't hold back who empties a file by opening it
        added = seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(open), 1,
                                 SCMP_A1(SCMP_CMP_MASKED_EQ, O_TRUNC, 0)) == 0 &&
                added;
        added = seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(openat), 1,
                                 SCMP_A2(SCMP_CMP_MASKED_EQ, O_TRUNC, 0)) == 0 &&
                added;
    }
    // Threads, but no processes. The C library falls back on clone where clone3, whose flags no filter sees,
    // isn't there.
    added = seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(clone), 1,
                             SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD)) == 0 &&
            added;
    added = seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0 && added;
    return added;
}

bool EnterSeccomp(TReach reach) {
    scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ERRNO(EPERM));
    if (filter == nullptr)
        return false;
    const bool entered = AddRules(filter, reach) && seccomp_load(filter) == 0;
    seccomp_release(filter);
    return entered;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool Sanitized = true; // which look into the process in ways of their own
#else
constexpr bool Sanitized = false;
#endif

} // namespace

TReach ReachOf(const TPDFActionList* list) {
    TReach reach = TReach::Nothing;
    for (int i = 0; list != nullptr && i < list->FActions->Count(); ++i) {
        const TPDFAction& action = *(*list->FActions)[i];
        if (qobject_cast<const TPDFActionJavaScript*>(&action) != nullptr)
            return TReach::Programs;
        const QMetaObject& type = *action.metaObject();
        for (int member = 0; member < type.propertyCount(); ++member)
            if (string(QLatin1String(type.property(member).name()))
                    .compare(u"FileName", Qt::CaseInsensitive) == 0)
                reach = TReach::Files;
    }
    return reach;
}

string EnterSandbox(TReach reach) {
    QStringList entered;
    if (reach != TReach::Programs && !Sanitized) {
        (void)::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        if (reach == TReach::Nothing && EnterLandlock())
            entered.append(QStringLiteral("landlock"));
        if (EnterSeccomp(reach))
            entered.append(QStringLiteral("seccomp"));
    }
    return entered.isEmpty() ? QStringLiteral("none") : entered.join(QStringLiteral(", "));
}
