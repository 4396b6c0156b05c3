#pragma once
// Decoders of the codings that can make much of little (ISO 32000-1, 7.4.4 and 7.4.5), as parts of the
// library's pipeline. Unlike its own they pass on all that stands before damage.
#include <qpdf/Pipeline.hh>

#include <memory>
#include <vector>

class TInflate : public Pipeline {
public:
    explicit TInflate(Pipeline* to);
    ~TInflate() override;

    /// Raises behind what could be decoded where the data is damaged. A checksum that is missing is no
    /// damage; a wrong one tells of wrong bytes that make other data all the same.
    void write(unsigned char const* data, size_t size) override;
    void finish() override;

private:
    [[nodiscard]] bool LacksOnlyItsEnd();

    struct TState;
    std::unique_ptr<TState> FState;
};

class TRunLengthDecode : public Pipeline {
public:
    explicit TRunLengthDecode(Pipeline* to) : Pipeline("run length", to) {}

    void write(unsigned char const* data, size_t size) override;
    void finish() override { getNext()->finish(); }

private:
    static constexpr unsigned char EndOfData = 128;
    bool FRunIsNext = false; // of a byte that is repeated
    bool FEnded = false;
    unsigned FCount = 0; // bytes to come of the run, or times to repeat one
};

class TLzwDecode : public Pipeline {
public:
    /// `earlyChange`: codes become longer one code early, as is usual.
    TLzwDecode(Pipeline* to, bool earlyChange);

    void write(unsigned char const* data, size_t size) override;
    void finish() override;

private:
    struct TEntry {
        unsigned short Prefix;
        unsigned char Last;
        unsigned char First;
    };
    void Code(unsigned code);
    void Emit(unsigned code);
    void Flush();
    void Clear();

    bool FEarly;
    std::vector<TEntry> FTable;
    unsigned FUsed = 0;
    unsigned FPrevious = 0;
    bool FHasPrevious = false;
    bool FEnded = false;
    unsigned FWidth = 9;
    unsigned FBits = 0;
    unsigned FBitCount = 0;
    std::vector<unsigned char> FOutput;
};
