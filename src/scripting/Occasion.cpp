#include "scripting/Occasion.h"

#include <utility>

namespace {

thread_local const TScriptOccasion* Current = nullptr;

} // namespace

TScriptOccasion::TScriptOccasion(const string& file, const string& list)
    : FText(QStringLiteral("\"%1\", list \"%2\"").arg(file, list)), FOuter(std::exchange(Current, this)) {}

TScriptOccasion::~TScriptOccasion() {
    Current = FOuter;
}

string TScriptOccasion::Text() {
    return Current == nullptr ? string() : Current->FText;
}
