#include "engine/core/Security.h"

namespace {

int KeyBits(quint32 cipher, int chosen) {
    switch (cipher) {
    case TPDFPasswordSecurityHandler::CipherAES128:
        return 128;
    case TPDFPasswordSecurityHandler::CipherAES256:
        return 256;
    default:
        return chosen;
    }
}

} // namespace

int TPDFPasswordSecurityHandler::StreamKeyBits() const {
    return KeyBits(StreamCipher, FStreamBits);
}

int TPDFPasswordSecurityHandler::StringKeyBits() const {
    return KeyBits(StringCipher, FStringBits);
}
