#include "base/Exceptions.h"

#include <cstring>

EFileError::EFileError(const string& doing, const string& path, int error)
    : Exception(QStringLiteral("Cannot %1 \"%2\": %3")
                    .arg(doing, path, QString::fromLocal8Bit(std::strerror(error)))),
      FError(error) {}

string MessageOf(const std::exception& e) {
    if (const auto* own = dynamic_cast<const Exception*>(&e))
        return own->Message();
    return QString::fromUtf8(e.what());
}
