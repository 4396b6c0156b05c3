#include "editor/style/MarkerFinder.h"

#include <algorithm>

TMarkerFinder::TMarkerFinder(const QStringList& markers) {
    for (const string& marker : markers)
        FMarkers.push_back({marker});
}

void TMarkerFinder::Restart() {
    for (TMarker& marker : FMarkers) {
        marker.Passed = -1;
        marker.Searched = 0;
    }
}

qsizetype TMarkerFinder::FindOne(TMarker& marker, QStringView passed, QStringView text, qsizetype at) {
    const qsizetype size = marker.Text.size();
    if (marker.Passed < 0 && passed.size() >= size && passed.size() > marker.Searched) {
        marker.Passed = passed.indexOf(marker.Text, std::max<qsizetype>(0, marker.Searched - size + 1));
        marker.Searched = passed.size();
    }
    if (marker.Passed >= 0)
        return marker.Passed;
    const QStringView rest = text.mid(at);
    for (qsizetype k = std::max<qsizetype>(0, passed.size() - size + 1); k < passed.size(); ++k) {
        const QStringView head = passed.mid(k);
        const QStringView whole = marker.Text;
        if (whole.startsWith(head) && rest.startsWith(whole.mid(head.size())))
            return k;
    }
    if (marker.Next != -1 && marker.Next < at)
        marker.Next = text.indexOf(marker.Text, at);
    return marker.Next < 0 ? -1 : passed.size() + marker.Next - at;
}

int TMarkerFinder::Find(QStringView passed, QStringView text, qsizetype at, int& length) {
    for (TMarker& marker : FMarkers) {
        const qsizetype found = FindOne(marker, passed, text, at);
        if (found < 0)
            continue;
        length = int(marker.Text.size());
        return int(found) + 1;
    }
    return 0;
}
