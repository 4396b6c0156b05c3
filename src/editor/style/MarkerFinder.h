#pragma once
// Finds the first comment marker in a text that shrinks from its cursor on, in time linear in the text.
#include "base/Text.h"

#include <QStringList>

#include <vector>

class TMarkerFinder {
public:
    /// `markers` in the order in which they are tried.
    explicit TMarkerFinder(const QStringList& markers);

    /// Searches `passed` followed by `text` from `at` on. `at` never goes back, and `passed` only grows
    /// until Restart. Returns the position of the first kind of marker that occurs, from 1, or 0.
    int Find(QStringView passed, QStringView text, qsizetype at, int& length);
    /// `passed` is empty again.
    void Restart();

private:
    struct TMarker {
        string Text;
        qsizetype Passed = -1;  // where it lies wholly in the passed text
        qsizetype Searched = 0; // how much of the passed text has been looked at
        qsizetype Next = -2;    // where it stands next in the text; -1 nowhere, -2 not known
    };
    static qsizetype FindOne(TMarker& marker, QStringView passed, QStringView text, qsizetype at);

    std::vector<TMarker> FMarkers;
};
