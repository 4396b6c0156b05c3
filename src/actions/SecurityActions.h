#pragma once
#include "actions/Action.h"

/// Takes the encryption off a document that was opened with its owner password.
class TPDFActionDecrypt : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionDecrypt() {}
    bool Config() override { return true; }
};
