#pragma once
#include "engine/document/Document.h"

#include <QPointer>

/// The document that is being stamped, for the whole process; null otherwise, and once it is freed. So only
/// one stamping may run at a time.
inline QPointer<TZQPDFDocument> GlobalDocument;
