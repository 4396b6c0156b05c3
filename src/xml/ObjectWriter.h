#pragma once
// Objects to XML through the run-time tables.
#include "xml/XmlWriter.h"

class QObject;

/// The document of an object under the root element `rootName`. Raises Exception where something could not
/// be read back: a member of a type without a form, an item of a class that isn't registered.
[[nodiscard]] QByteArray WriteDocument(const QObject& object, const string& rootName, XmlLayout layout);
