#pragma once
// The ledger's tables. docs/ledger.md says what is in them.

class TLedgerConnection;

/// Makes what is missing, or brings an older ledger to this version. Raises ELedger, also for a ledger that
/// a newer version has changed.
void PrepareSchema(TLedgerConnection& ledger);
