#pragma once
// XML to objects through the run-time tables.
#include "xml/XmlParser.h"

#include <functional>

class QObject;

/// Told of what a document has and the reader leaves out: its line, and what it is.
using TNoteSkipped = std::function<void(int line, const string& what)>;

/// Fills `object` from the document, whose root must be `rootName`. Members that it lacks stay as they are,
/// unknown members are skipped, lists that it has are replaced. Names are matched exactly or else without
/// regard to the case of A to Z; their order doesn't matter. Raises EXmlError with source and line; the
/// object may then be partly filled.
void ReadDocument(QObject& object, const TXmlDocument& document, const string& rootName,
                  const TNoteSkipped& noteSkipped = {});
