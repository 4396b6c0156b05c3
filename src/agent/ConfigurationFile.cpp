#include "agent/ConfigurationFile.h"

#include "base/BusyFile.h"
#include "base/Paths.h"

TConfigurationFile::TConfigurationFile(const string& path, std::function<void(const string&)> load)
    : FPath(path), FLoad(std::move(load)) {}

bool TConfigurationFile::LoadFirst() {
    const TReadLease lease(FPath);
    if (lease.Refused())
        return false;
    FLoad(FPath);
    if (!FileExists(FPath))
        return true;
    FTime = LastWriteTime(FPath);
    FHash = TMD5Hash::MD5File(FPath);
    return true;
}

bool TConfigurationFile::LoadIfChanged() {
    if (!FileExists(FPath))
        return false;
    const TReadLease lease(FPath); // or a writer that comes now would be read with half its work done
    if (lease.Refused())
        return false;
    if (LastWriteTime(FPath) <= FTime)
        return true;
    const TMD5Hash::MD5Digest hash = TMD5Hash::MD5File(FPath);
    if (!TMD5Hash::MD5Match(hash, FHash)) {
        FLoad(FPath);
        FHash = hash;
    }
    FTime = LastWriteTime(FPath);
    return true;
}
