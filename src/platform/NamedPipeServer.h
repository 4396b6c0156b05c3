#pragma once
// The server end of a named pipe: many clients, one message at a time, on the thread of its caller.
//
// Clients take turns message by message, so that neither one that floods the pipe, nor one that sends
// nothing or half a message, nor one that never reads its replies keeps another waiting. What one client can
// make the server hold is bounded: a message's limit each way. Where too many are connected, the one that
// has been silent longest is let go.
#include "platform/FileLock.h"
#include "platform/NamedPipe.h"

#include <memory>
#include <optional>
#include <sys/types.h>
#include <vector>

class TNamedPipeServer : public TNamedPipe {
public:
    static constexpr size_t ClientLimit = 128;

    TNamedPipeServer(const string& pipeName, const string& serverName);
    ~TNamedPipeServer() override;

    /// Brings the pipe up under its name. A socket left over from a process that died is replaced; raises
    /// EPipeError if another process serves the pipe.
    void OpenPipe() override;
    /// Also serves connections, so it must be called again and again.
    [[nodiscard]] string Read(int timeoutMs) override;
    /// Replies to the client whose message Read returned last. Ignored if there is none or it has gone.
    void WritePipe(const string& text) override;

    /// The one user whose processes are let in; at first the user of this process.
    void SetAllowedUser(uid_t user) { FAllowedUser = user; }
    [[nodiscard]] size_t ClientCount() const { return FClients.size(); }

private:
    class TClient;

    void Bind();
    void Serve(int timeoutMs);
    void Accept();
    void RemoveDone();
    [[nodiscard]] bool MakeRoom();
    [[nodiscard]] string TakeMessage();

    uid_t FAllowedUser;
    std::optional<TFileLock> FLock; ///< whoever has it serves the pipe
    TDescriptor FListener;
    dev_t FDevice = 0; ///< with FInode, the socket's file: only our own is removed
    ino_t FInode = 0;
    /// In the order in which their turns come.
    std::vector<std::unique_ptr<TClient>> FClients;
    TClient* FCurrent = nullptr; ///< to whom a reply goes; one of FClients, or null
};
