#pragma once
// What scripts are run for at the moment: a script alone knows neither its file nor its list, and whoever
// reads its failure in the journal, or has one of its boxes before them, asks for both.
#include "base/Text.h"

/// For the thread that runs the actions, while it lives; an inner one stands in front of an outer one.
class TScriptOccasion {
public:
    /// The path of the file, as it was found in its folder, and the name of the list.
    TScriptOccasion(const string& file, const string& list);
    ~TScriptOccasion();
    TScriptOccasion(const TScriptOccasion&) = delete;
    TScriptOccasion& operator=(const TScriptOccasion&) = delete;

    /// As in `"/srv/scans/a.pdf", list "Stamp"`; empty where there is none.
    [[nodiscard]] static string Text();

private:
    const string FText;
    const TScriptOccasion* const FOuter;
};
