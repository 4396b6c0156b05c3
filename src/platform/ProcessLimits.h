#pragma once
// What the process may take of the system, and what programs that it starts may: they get the limits that it
// was started with itself.
#include <sys/types.h>

#include <QtGlobal>

/// Raises the soft limit of open files to the hard one. That is low by custom, for programs that use
/// select(2); this one doesn't.
void RaiseDescriptorLimit();
/// The soft limit of before, which a process of ours that inherits the raised one is told; 0: nothing was
/// raised.
[[nodiscard]] quint64 FormerDescriptorLimit();
void SetFormerDescriptorLimit(quint64 former);

/// Gives a program that this process has started the soft limit of before.
void RestoreDescriptorLimit(pid_t program);

/// From here on the process may hold so many bytes as data. It may be called again, with more or less.
void LimitMemory(quint64 bytes);

/// Bytes of memory that a process holds, its share of what it has together with others included; 0 where the
/// system doesn't say.
[[nodiscard]] quint64 MemoryHeldBy(pid_t process);

/// While it lives, the process has the limit of memory that it was started with, and so have the programs
/// that it starts, from their beginning.
class TFormerMemoryLimit {
public:
    TFormerMemoryLimit();
    ~TFormerMemoryLimit();
    TFormerMemoryLimit(const TFormerMemoryLimit&) = delete;
    TFormerMemoryLimit& operator=(const TFormerMemoryLimit&) = delete;

private:
    quint64 FLimited = 0; // bytes
};
