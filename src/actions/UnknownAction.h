#pragma once
#include "actions/Action.h"

/// Stands for an action of a class that this program doesn't know, from a newer or another one. It keeps the
/// element and is written back unchanged; running it raises, so that the file goes to `Error/` and the
/// operation is not left out in silence.
class TPDFUnknownAction : public TPDFAction {
    Q_OBJECT
    Q_PROPERTY(string ClassName MEMBER FClassName STORED false)
    Q_PROPERTY(string Xml MEMBER FXml STORED false)
public:
    Q_INVOKABLE TPDFUnknownAction() = default;
    Cardinal Execute(TZQPDFDocument& Document) override;

private:
    string FClassName;
    string FXml;
};
