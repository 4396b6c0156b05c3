#pragma once
// A fuzz target is a source file with one function, which must survive any bytes: no crash, no hang, no
// exception but ours, and whatever else it checks. In a build with the preset `fuzz` libFuzzer calls it;
// in every build a plain program feeds the seeds through it.
#include "base/Exceptions.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size);

/// Ends the program, and so the run, where something doesn't hold.
inline void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "fuzz target: %s\n", what);
    std::abort();
}

/// Bytes as a file in memory.
class TInputFile {
public:
    TInputFile(const unsigned char* data, size_t size) : FDescriptor(::memfd_create("input", MFD_CLOEXEC)) {
        Require(::write(FDescriptor, data, size) == ssize_t(size), "the input can't be written");
    }
    ~TInputFile() { ::close(FDescriptor); }
    TInputFile(const TInputFile&) = delete;
    TInputFile& operator=(const TInputFile&) = delete;

    [[nodiscard]] string Path() const { return QStringLiteral("/proc/self/fd/%1").arg(FDescriptor); }

private:
    int FDescriptor;
};

inline string TextOf(const unsigned char* data, size_t size) {
    return QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
}
