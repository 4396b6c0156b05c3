#pragma once
// Protection in libqpdf's terms.
#include "engine/core/DocumentCore.h"

class QPDFWriter;

/// What the installed handler says, for the writer. Raises EPDFError if it says no cipher: nothing that was
/// meant to be protected is ever written without protection.
void SetEncryption(QPDFWriter& writer, const TDocumentCore& core);

/// The permission bits of an open document (ISO 32000-1, table 22), all set where its owner opened it.
[[nodiscard]] quint32 PermissionBits(const TPDFSource& source);

/// The handler of a document that was opened: null if it isn't protected.
[[nodiscard]] std::unique_ptr<TPDFPasswordSecurityHandler> HandlerOf(const TPDFSource& source);
