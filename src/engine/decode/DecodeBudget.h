#pragma once
// How much the decoding of streams may bring forth. A few hundred bytes can be filtered into any number, and
// what a filter gives may be the input of the next: so each stage counts.
#include "base/Text.h"

class TDecodeBudget {
public:
    /// Bytes for one stage of a stream, and for all stages of all streams.
    TDecodeBudget(qint64 stage, qint64 all) : FStage(stage), FAll(all), FLeft(all) {}

    /// Whether a decoding ended because of it. The library takes what that raises for damage.
    [[nodiscard]] bool Exceeded() const { return FExceeded; }
    /// Raises EPDFError if so, and EInterrupted if a stop ended a decoding; `of` reads as in "The contents of
    /// page 3".
    void RequireKept(const string& of) const;

private:
    friend class TStageCount;
    qint64 FStage;
    qint64 FAll;
    qint64 FLeft;
    bool FExceeded = false;
};

/// A budget bounds what this thread decodes while this lives. The innermost counts alone.
class TDecodeScope {
public:
    explicit TDecodeScope(TDecodeBudget& budget);
    ~TDecodeScope();
    TDecodeScope(const TDecodeScope&) = delete;
    TDecodeScope& operator=(const TDecodeScope&) = delete;

private:
    TDecodeBudget* FOuter;
};

/// The output of one stage.
class TStageCount {
public:
    /// Raises where the budget in force, or that for the whole, is used up, and when the program is to stop.
    void Add(size_t bytes);

private:
    qint64 FBytes = 0;
};

/// Has the library decode through filters that count. Once, before the first file is opened.
void InstallCountingFilters();
