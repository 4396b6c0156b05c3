#pragma once
// Documents that the rules of the run leave allocated: after a failure, from an extracting action, at a
// stop. They stay reachable here to the end of the process, without their file and their bulk, so that
// thousands of them cost little. Only for the thread that runs the actions.
#include "engine/document/Document.h"

#include <exception>
#include <memory>

void Park(std::unique_ptr<TZQPDFDocument> document);

/// Parks a script document that a method returned and that nobody owns; anything else is none of its
/// business.
void ParkResult(const QVariant& result);

[[nodiscard]] int ParkedCount();

/// Parks the document if the scope is left by an exception.
class TParkOnException {
public:
    explicit TParkOnException(std::unique_ptr<TZQPDFDocument>& document) : FDocument(document) {}
    ~TParkOnException();
    TParkOnException(const TParkOnException&) = delete;
    TParkOnException& operator=(const TParkOnException&) = delete;

private:
    std::unique_ptr<TZQPDFDocument>& FDocument;
    int FExceptions = std::uncaught_exceptions();
};
