#pragma once
// What the engine raises. Exceptions of the PDF library end at this module's border as one of these.
#include "base/Exceptions.h"

enum class TPDFErrorKind : quint8 {
    Other,
    NotPdf,        ///< the file holds no PDF
    Damaged,       ///< too damaged: no pages can be read
    NeedsPassword, ///< protected, and no password was given
    WrongPassword, ///< protected, and the password given doesn't open it
    Unsupported,   ///< protected in a way for which no password exists here
};

class EPDFError : public Exception {
public:
    explicit EPDFError(const string& message, TPDFErrorKind kind = TPDFErrorKind::Other)
        : Exception(message), FKind(kind) {}
    [[nodiscard]] TPDFErrorKind Kind() const { return FKind; }

private:
    TPDFErrorKind FKind;
};
