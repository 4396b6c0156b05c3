#pragma once
// Soft word wrap, done by really cutting long lines into several lines of the store; continuations are
// marked with TLineProp::Wrapped and joined again before a save.
#include "editor/text/LineStore.h"

class TWordWrap {
public:
    /// Cuts every line longer than `limit` characters. Gives up all TLineProp objects, and with them every
    /// mark on the lines, on purpose: bookmarks and breakpoints don't survive a wrap. `limit` of 0 or less
    /// leaves the lines alone.
    void Wrap(TAdvMemoStrings& store, int limit);
    /// Joins continuations with their lines; a line keeps the TLineProp of its first piece.
    void Unwrap(TAdvMemoStrings& store);

    /// The rows that the last Wrap made, or that the last Unwrap joined, ascending.
    [[nodiscard]] const TIntList& Rows() const { return FWWList; }

private:
    TIntList FWWList;
};

/// The lines with their continuations joined.
[[nodiscard]] std::vector<string> WholeLines(const TAdvMemoStrings& store);
/// Where a line begins, counted without continuations; the last one for a line behind it.
[[nodiscard]] int RowOfLine(const TAdvMemoStrings& store, int line);

/// Takes the first part of a line longer than `limit` characters and returns where it ends: behind the last
/// blank that leaves the part shorter than `limit`, or at `limit` where there is none.
[[nodiscard]] qsizetype WrapCut(QStringView line, int limit);
