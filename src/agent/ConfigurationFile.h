#pragma once
// A configuration file as the run remembers it: what changed is told by time first, then by contents.
#include "base/Md5.h"

#include <functional>

class TConfigurationFile {
public:
    TConfigurationFile(const string& path, std::function<void(const string&)> load);

    /// Loads for the first time. A file that is absent counts as time 0 with an empty digest, and so does one
    /// that is open for writing, which makes the answer false; raises what loading raises.
    [[nodiscard]] bool LoadFirst();
    /// Loads if the file is newer than when last looked at and its contents differ from the last load.
    /// False if it couldn't be looked at, being absent or open for writing.
    [[nodiscard]] bool LoadIfChanged();
    /// Loads without looking at time or contents, and without remembering them.
    void Reload() { FLoad(FPath); }

private:
    string FPath;
    std::function<void(const string&)> FLoad;
    qint64 FTime = 0; // last-write time in nanoseconds
    TMD5Hash::MD5Digest FHash{};
};
