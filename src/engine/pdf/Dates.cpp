#include "engine/pdf/Dates.h"

#include <cstdio>
#include <cstdlib>

std::string PdfDate(const QDateTime& time) {
    const int offset = time.offsetFromUtc() / 60;
    const QDate d = time.date();
    const QTime t = time.time();
    char text[40];
    std::snprintf(text, sizeof text, "D:%04d%02d%02d%02d%02d%02d%c%02d'%02d'", d.year(), d.month(), d.day(),
                  t.hour(), t.minute(), t.second(), offset < 0 ? '-' : '+', std::abs(offset) / 60,
                  std::abs(offset) % 60);
    return text;
}
