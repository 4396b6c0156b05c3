#include "agent/ConfigurationFile.h"

#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "base/Paths.h"
#include "platform/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace {

enum class TWriters { None, Some, Unknown };

/// Network file systems may refuse every lease, whether anybody writes or not.
bool RefusalCounts(int descriptor) {
    // NFS, SMB of three generations, AFS, 9P, Ceph (linux/magic.h has not all of them).
    constexpr std::array<quint32, 7> Network = {0x6969,     0x517B,     0xFF534D42, 0xFE534D42,
                                                0x5346414F, 0x01021997, 0x00C36400};
    struct statfs info {};
    return ::fstatfs(descriptor, &info) == 0 &&
           std::find(Network.begin(), Network.end(), quint32(info.f_type)) == Network.end();
}

/// Holds a file open with a lease, where it gets one: who opens it for writing then waits until this goes.
class THeldFile {
public:
    explicit THeldFile(const string& path)
        : FFile(::open(PathBytes(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}

    [[nodiscard]] TWriters Writers() const {
        // The default signal of a broken lease would end the process; this one is ignored by default.
        const int taken = WithFaultPoint("lease", [this] {
            return ::fcntl(FFile.Number(), F_SETSIG, SIGURG) != 0
                       ? -1
                       : ::fcntl(FFile.Number(), F_SETLEASE, F_RDLCK);
        });
        if (taken == 0)
            return TWriters::None;
        return errno == EAGAIN && RefusalCounts(FFile.Number()) ? TWriters::Some : TWriters::Unknown;
    }

private:
    TDescriptor FFile; // closing it gives the lease back
};

qint64 Nanoseconds(const timespec& time) {
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

} // namespace

TConfigurationFile::TConfigurationFile(const string& path, TRead read)
    : FPath(path), FRead(std::move(read)) {}

TConfigurationFile::TSeen TConfigurationFile::Stamp() const {
    struct stat info {};
    if (::stat(PathBytes(FPath).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    return TStamp{info.st_dev, info.st_ino, Nanoseconds(info.st_mtim), Nanoseconds(info.st_ctim),
                  info.st_size};
}

bool TConfigurationFile::Differs() const {
    return Stamp() != FStamp;
}

TConfigurationFile::TFound TConfigurationFile::Look(TLook look) {
    const TSeen stamp = Stamp();
    if (look == TLook::IfChanged && !stamp)
        return TFound::Later;
    if (look == TLook::IfChanged && stamp == FStamp)
        return TFound::Read;
    const THeldFile held(FPath);
    const TWriters writers = stamp ? held.Writers() : TWriters::None;
    if (writers == TWriters::Some || !AtRest(writers == TWriters::None, stamp))
        return TFound::Later;
    return Read(look, stamp);
}

bool TConfigurationFile::AtRest(bool answered, const TSeen& stamp) {
    constexpr int QuietLooks = 2;
    if (answered)
        return true;
    FQuietLooks = FWaitedFor == stamp ? FQuietLooks + 1 : 0;
    FWaitedFor = stamp;
    return FQuietLooks >= QuietLooks;
}

TConfigurationFile::TFound TConfigurationFile::Read(TLook look, const TSeen& stamp) {
    const TReading reading = TryToRead(look, stamp);
    if (Stamp() != stamp)
        return TFound::Later; // it changed meanwhile, and what was read may be neither the one nor the other
    FFault = reading.Fault;
    if (reading.Again)
        return TFound::Later;
    FStamp = stamp;
    FWaitedFor.reset();
    if (reading.PutInForce) {
        reading.PutInForce();
        FDigest = reading.Digest;
        FInForce = true;
        ++FVersions;
    }
    return TFound::Read;
}

TConfigurationFile::TReading TConfigurationFile::TryToRead(TLook look, const TSeen& stamp) const {
    TReading reading;
    try {
        if (stamp)
            reading.Digest = TMD5Hash::MD5File(FPath);
        if (look == TLook::Always || !FInForce || reading.Digest != FDigest)
            reading.PutInForce = FRead(FPath);
    } catch (const EFileError& e) {
        reading.Fault = e.Message();
        reading.Again = true;
    } catch (const std::exception& e) {
        reading.Fault = MessageOf(e);
    }
    return reading;
}
