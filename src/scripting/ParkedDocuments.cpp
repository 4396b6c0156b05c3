#include "scripting/ParkedDocuments.h"

#include "scripting/ScriptDocument.h"

#include <vector>

namespace {
std::vector<std::unique_ptr<QObject>>& Parked() {
    static std::vector<std::unique_ptr<QObject>> documents;
    return documents;
}
} // namespace

void Park(std::unique_ptr<TZQPDFDocument> document) {
    if (document == nullptr)
        return;
    document->ReleaseBulk();
    Parked().push_back(std::move(document));
}

TParkOnException::~TParkOnException() {
    if (std::uncaught_exceptions() <= FExceptions)
        return;
    try {
        Park(std::move(FDocument));
    } catch (...) { // out of memory on top of a failure: the document is freed after all
    }
}

void ParkResult(const QVariant& result) {
    std::unique_ptr<TJSPDFDocument> document(result.value<TJSPDFDocument*>());
    if (document == nullptr)
        return;
    document->Document().ReleaseBulk();
    Parked().push_back(std::move(document));
}

int ParkedCount() {
    return int(Parked().size());
}
