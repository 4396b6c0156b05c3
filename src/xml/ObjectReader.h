#pragma once
// XML to objects through the run-time tables.
#include "xml/XmlParser.h"

#include <functional>

class QObject;

/// Fills `object` from the document, whose root must be `rootName`. Members that it lacks stay as they are,
/// unknown members are skipped, lists that it has are replaced. Names are matched exactly or else without
/// regard to the case of A to Z; their order doesn't matter. Raises EXmlError with source and line; the
/// object may then be partly filled.
void ReadDocument(QObject& object, const TXmlDocument& document, const string& rootName);

/// What a review is told.
struct TReview {
    /// Something that can't be used, or that nothing looks at: its line, and what it is.
    std::function<void(int line, const string& what)> Fault;
    /// An object stands in this element, which lives as long as the document.
    std::function<void(const QObject& object, const TXmlElement& element)> Read;
};

/// Reads what there is for somebody who wants to know all that is wrong with it: goes on behind each fault.
/// Of a list of values each item is there, one that can't be read with its defaults. Raises EXmlError for
/// another root.
void ReviewDocument(QObject& object, const TXmlDocument& document, const string& rootName,
                    const TReview& review);
