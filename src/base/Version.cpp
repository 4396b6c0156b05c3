#include "base/Version.h"

string ProgramVersion() {
    return QStringLiteral(MORVANE_VERSION);
}
