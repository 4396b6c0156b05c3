#pragma once
// The instances of one program that run for this user: how many there may be, and how a later one sends its
// command line to those that were there before it.
//
// An instance holds a numbered lock file named after the identity, which a crash frees, and has a datagram
// socket beside it. What arrives there reaches the instance's windows as WM_COPYDATA.
#include "platform/FileLock.h"
#include "platform/HiddenWindow.h"

#include <memory>
#include <optional>

/// Kinds of WM_COPYDATA.
inline constexpr int CopyDataNone = 0;
inline constexpr int CopyDataCommandLine = 1;

class TAppInstances {
public:
    static constexpr int Limit = 16; ///< more instances than this are never within a limit

    explicit TAppInstances(const string& identity);
    ~TAppInstances();
    TAppInstances(const TAppInstances&) = delete;
    TAppInstances& operator=(const TAppInstances&) = delete;

    /// Enters this process in the list; true if it is within the limit. Once it is entered, the answer stays
    /// true. Raises Exception if the runtime folder can't be used.
    [[nodiscard]] bool CheckInstance(int maxInstances);
    /// Sends this process's command line, one argument a line, to the other instances' windows of that
    /// class; `originator` is a window of this process or 0. Returns how many instances it reached; never
    /// waits.
    [[nodiscard]] int SendCmdLineParams(const string& windowClassName, TWindowHandle originator) const;
    /// Would bring an instance to the foreground; a program can't do that to another here.
    void SwitchTo(int index) const;
    /// Ends this process at once, with nothing run on its way out.
    [[noreturn]] static void KillInstance();

    /// Readable when something has arrived for this instance; -1 if it isn't entered.
    [[nodiscard]] int Descriptor() const { return FChannel.Number(); }
    /// Posts what has arrived to the windows that it is meant for.
    void Receive();

private:
    [[nodiscard]] string FileName(int index, const char* kind) const;
    void OpenChannel();

    string FIdentity;
    string FFolder;
    int FIndex = -1; ///< this process's place in the list, -1 before it is entered
    std::optional<TFileLock> FLock;
    TDescriptor FChannel;
};

/// The list of all running processes that use this identity.
[[nodiscard]] std::unique_ptr<TAppInstances> JclAppInstances(const string& guid);

/// The kind of data that a WM_COPYDATA message holds; CopyDataNone for other messages, and for what
/// `ignoredOriginator` itself has sent.
[[nodiscard]] int ReadMessageCheck(const TMessage& message, TWindowHandle ignoredOriginator);
/// Takes the text out of such a message.
void ReadMessageString(const TMessage& message, string& text);
