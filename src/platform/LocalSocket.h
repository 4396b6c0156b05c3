#pragma once
// Local sockets that have a name in the file system.
#include "base/Text.h"
#include "platform/Descriptor.h"

#include <sys/socket.h>
#include <sys/un.h>

/// The address of the socket `name` in `folder`. Paths longer than an address holds (107 bytes) are reached
/// through the open folder. Raises EFileError.
class TLocalAddress {
public:
    TLocalAddress(const string& folder, const string& name);
    [[nodiscard]] const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&FAddress); }
    [[nodiscard]] socklen_t Size() const { return sizeof FAddress; }
    /// A path to the socket that holds while this object lives.
    [[nodiscard]] const char* Path() const { return FAddress.sun_path; }

private:
    sockaddr_un FAddress{};
    TDescriptor FFolder;
};

enum class TBlocking { No, Yes };

/// A socket that isn't inherited. `type` is SOCK_STREAM or SOCK_DGRAM. Raises EFileError.
[[nodiscard]] TDescriptor OpenLocalSocket(int type, TBlocking blocking = TBlocking::No);

/// The user at the other end of a connected socket; an invalid number where the system can't say.
[[nodiscard]] uid_t PeerUser(int socket);
