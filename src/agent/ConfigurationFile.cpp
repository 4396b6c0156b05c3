#include "agent/ConfigurationFile.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "platform/Descriptor.h"

#include <fcntl.h>

TConfigurationFile::TConfigurationFile(const string& path, TRead read)
    : FPath(path), FRead(std::move(read)) {}

TConfigurationFile::TSeen TConfigurationFile::Stamp() const {
    struct stat info {};
    if (::stat(PathBytes(FPath).constData(), &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    return StateOf(info);
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
    const TDescriptor held(
        ::open(PathBytes(FPath).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    const TLease lease = stamp ? TakeLease(held.Number()) : TLease::Free;
    if (lease == TLease::Busy || !AtRest(lease == TLease::Free, stamp))
        return TFound::Later;
    return Read(look, stamp);
}

/// A lease that is granted keeps writers waiting while the file is read.
TLease TConfigurationFile::TakeLease(int descriptor) {
    try {
        return FLeases.Take(*TFolder::Open(ExtractFilePath(FPath)), descriptor);
    } catch (const EFileError&) {
        return TLease::Unknown;
    }
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
