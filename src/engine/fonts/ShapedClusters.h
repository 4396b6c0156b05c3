#pragma once
// The clusters of a run: the smallest pieces of text that have glyphs of their own.
#include "engine/fonts/TextShaper.h"

#include <span>

struct TShapedCluster {
    std::span<const TShapedGlyph> Glyphs; ///< from left to right
    quint32 Start = 0;                    ///< its characters in the line's text
    quint32 End = 0;
};

/// Calls `action` for each cluster from left to right.
template <typename TAction> void ForEachCluster(const TShapedRun& run, const TAction& action) {
    const std::span<const TShapedGlyph> glyphs(run.Glyphs);
    quint32 laterStart = run.End; // where the text of the cluster to the left begins
    for (size_t first = 0; first < glyphs.size();) {
        const quint32 start = glyphs[first].Cluster;
        size_t last = first + 1;
        while (last < glyphs.size() && glyphs[last].Cluster == start)
            ++last;
        const quint32 nextStart = last < glyphs.size() ? glyphs[last].Cluster : run.End;
        action(TShapedCluster{glyphs.subspan(first, last - first), start,
                              run.RightToLeft ? laterStart : nextStart});
        laterStart = start;
        first = last;
    }
}
