#pragma once
// Local named pipes for short text messages between processes of one user.
//
// A pipe is a Unix stream socket in the runtime folder. A message is UTF-8 text ended by a line feed or by
// the end of the stream; a reply ends with a line feed. A connection may carry several messages.
#include "base/Exceptions.h"
#include "platform/Descriptor.h"

/// The pipe can't be made, or nobody serves it.
class EPipeError : public Exception {
public:
    using Exception::Exception;
};

class TNamedPipe {
public:
    static constexpr qsizetype MessageLimit = 4096; ///< bytes, without the line feed

    /// `serverName` must be ".", the local machine.
    TNamedPipe(const string& pipeName, const string& serverName);
    virtual ~TNamedPipe() = default;
    TNamedPipe(const TNamedPipe&) = delete;
    TNamedPipe& operator=(const TNamedPipe&) = delete;

    virtual void OpenPipe() = 0;
    /// The next message without its line feed, or empty when none came within the time.
    [[nodiscard]] virtual string Read(int timeoutMs) = 0;
    virtual void WritePipe(const string& text) = 0;

protected:
    const string FName;
    const string FFolder;
};

class TNamedPipeClient : public TNamedPipe {
public:
    explicit TNamedPipeClient(const string& pipeName, const string& serverName = QStringLiteral("."))
        : TNamedPipe(pipeName, serverName) {}

    /// Connects within 2 s. Raises EPipeError if no server of this user listens.
    void OpenPipe() override;
    [[nodiscard]] string Read(int timeoutMs) override;
    /// Raises EPipeError if the server has gone or takes nothing for 2 s.
    void WritePipe(const string& text) override;

private:
    [[nodiscard]] bool WaitReadable(int timeoutMs) const;

    TDescriptor FSocket;
    QByteArray FReceived;
};
