#pragma once
// A configuration file as the run remembers it. What is in force is always a whole, good version: a file that
// is faulty, that is being written or that changes while it is read leaves the last one where it is.
#include "base/FileState.h"
#include "base/Lease.h"
#include "base/Md5.h"

#include <functional>
#include <optional>

class TConfigurationFile {
public:
    /// Reads the file, of which a missing one is empty, and returns what puts it in force. Raises what is
    /// wrong with it.
    using TPutInForce = std::function<void()>;
    using TRead = std::function<TPutInForce(const string& path)>;

    TConfigurationFile(const string& path, TRead read);

    enum class TLook {
        IfChanged, ///< only a file that differs from when it was last looked at, in any time, size or place
        Always,    ///< whatever it looks like; a missing one counts as empty
    };
    enum class TFound {
        Read,  ///< what is in force is what stands in the file, or its fault is known
        Later, ///< it is missing, being written, or couldn't be opened: to be looked at again
    };
    /// One look, for which a tick is the right distance: where the file system doesn't tell who writes, two
    /// looks in a row that find the file unchanged must come first. Raises nothing.
    [[nodiscard]] TFound Look(TLook look);

    /// Whether Look(IfChanged) has anything to do; costs one call to the system.
    [[nodiscard]] bool Differs() const;
    /// A good version has been put in force since the start.
    [[nodiscard]] bool InForce() const { return FInForce; }
    /// How often one was.
    [[nodiscard]] int Versions() const { return FVersions; }
    /// What is wrong with the file as it was last looked at; empty if nothing is.
    [[nodiscard]] const string& Fault() const { return FFault; }

private:
    using TSeen = std::optional<TFileState>; // nothing for a file that is missing

    struct TReading {
        TMD5Hash::MD5Digest Digest{};
        TPutInForce PutInForce; // nothing where what stands there is in force
        string Fault;
        bool Again = false; // the file couldn't be read, which may pass without any change of it
    };

    [[nodiscard]] TSeen Stamp() const;
    [[nodiscard]] TLease TakeLease(int descriptor);
    [[nodiscard]] bool AtRest(bool answered, const TSeen& stamp);
    [[nodiscard]] TFound Read(TLook look, const TSeen& stamp);
    [[nodiscard]] TReading TryToRead(TLook look, const TSeen& stamp) const;

    string FPath;
    TRead FRead;
    TLeases FLeases;
    TSeen FStamp;                  // at the last look that came to an end
    TMD5Hash::MD5Digest FDigest{}; // of what is in force
    string FFault;
    TSeen FWaitedFor; // since so many looks
    int FQuietLooks = 0;
    bool FInForce = false;
    int FVersions = 0;
};
