#include "engine/decode/DecodeBudget.h"

#include "base/Interrupt.h"
#include "engine/pdf/Errors.h"

#include <stdexcept>

namespace {
/// Where nobody set a budget: an object stream that is read late.
constexpr qint64 StageOfItsOwn = 16 << 20;

thread_local TDecodeBudget* InForce = nullptr;
} // namespace

TDecodeScope::TDecodeScope(TDecodeBudget& budget) : FOuter(InForce) {
    InForce = &budget;
}

TDecodeScope::~TDecodeScope() {
    InForce = FOuter;
}

void TDecodeBudget::RequireKept(const string& of) const {
    RequireGoingOn();
    if (FExceeded)
        throw EPDFError(
            QStringLiteral("%1 decode to more than any document needs: %2 MB for one, %3 MB for all.")
                .arg(of)
                .arg(FStage >> 20)
                .arg(FAll >> 20));
}

void TStageCount::Add(size_t bytes) {
    RequireGoingOn();
    FBytes += qint64(bytes);
    TDecodeBudget* budget = InForce;
    if (budget != nullptr)
        budget->FLeft -= qint64(bytes);
    if (FBytes <= (budget != nullptr ? budget->FStage : StageOfItsOwn) &&
        (budget == nullptr || budget->FLeft >= 0))
        return;
    if (budget != nullptr)
        budget->FExceeded = true;
    throw std::runtime_error("decodes to more than it may");
}
