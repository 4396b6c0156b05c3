#include "actions/UnknownAction.h"

#include "base/Exceptions.h"

Cardinal TPDFUnknownAction::Execute(TZQPDFDocument& /*Document*/) {
    throw Exception(QStringLiteral("Unknown action class \"%1\".").arg(FClassName));
}
