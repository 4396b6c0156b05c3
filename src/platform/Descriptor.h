#pragma once
// A file descriptor that is closed with its holder.
#include <unistd.h>

#include <utility>

class TDescriptor {
public:
    TDescriptor() = default;
    /// Takes the descriptor; a negative number is none.
    explicit TDescriptor(int number) : FNumber(number) {}
    TDescriptor(TDescriptor&& other) noexcept : FNumber(std::exchange(other.FNumber, -1)) {}
    TDescriptor& operator=(TDescriptor&& other) noexcept {
        std::swap(FNumber, other.FNumber);
        return *this;
    }
    ~TDescriptor() {
        if (FNumber >= 0)
            ::close(FNumber);
    }

    [[nodiscard]] int Number() const { return FNumber; }
    [[nodiscard]] explicit operator bool() const { return FNumber >= 0; }

private:
    int FNumber = -1;
};
