#pragma once
#include "base/Exceptions.h"

enum class TLedgerFault {
    Unusable, ///< it can't be opened, read or written now: the same call may do later
    Refused,  ///< what was asked for can't be had, now or later
};

/// The only exception of the ledger. Its text names the ledger and the reason, and never a password. What a
/// call that raised it was to change is unchanged.
class ELedger : public Exception {
public:
    ELedger(TLedgerFault fault, const string& message) : Exception(message), FFault(fault) {}
    [[nodiscard]] TLedgerFault Fault() const { return FFault; }

private:
    TLedgerFault FFault;
};
