#pragma once
// The system's exceptions: plain text that a user can act on. Exceptions of other libraries stop at the
// border of the module that uses them and come out as one of these.
#include "base/Text.h"

#include <exception>

class Exception : public std::exception {
public:
    explicit Exception(const string& message) : FMessage(message), FNarrow(Narrow(message)) {}
    [[nodiscard]] const string& Message() const { return FMessage; }
    [[nodiscard]] const char* what() const noexcept override { return FNarrow.constData(); }

private:
    string FMessage;
    NarrowString FNarrow; // what() must not allocate
};

/// A value does not fit the type that a member or parameter declares.
class EConvertError : public Exception {
public:
    using Exception::Exception;
};

/// A file-system call failed; the message names the path and the system's reason.
class EFileError : public Exception {
public:
    /// `error` is an errno value, `doing` reads as in "cannot open".
    EFileError(const string& doing, const string& path, int error);
    EFileError(const string& message, int error) : Exception(message), FError(error) {}
    [[nodiscard]] int Error() const { return FError; }

private:
    int FError;
};

/// Reading what a file holds failed: its disk or its share, not its contents, is at fault.
class EReadError : public EFileError {
public:
    EReadError(const string& path, int error) : EFileError(QStringLiteral("read"), path, error) {}
};

/// The text of any exception, also of those that aren't ours.
[[nodiscard]] string MessageOf(const std::exception& e);
