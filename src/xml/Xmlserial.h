#pragma once
// Xmlserial: objects to XML files and streams and back.
//
// What is stored follows from the run-time tables: every member in declaration order, inherited ones first,
// as a child element; xml/XmlMarks.h has the marks for element names. Values: xml/Lexical.h; what a
// document may hold: xml/ObjectReader.h; limits: xml/XmlParser.h. The functions may be called from any
// thread that may use the object.
#include "xml/XmlParser.h"

class QIODevice;
class QObject;

/// Writes `object` to a file. Whoever looks at the file at any instant, even after a crash, finds the whole
/// old content or the whole new one. `compact` leaves out indentation; an empty `rootName` stands for the
/// class's own. Raises EFileError or EXmlError.
void XMLSerialize(const QObject& object, const string& fileName, Boolean compact, const string& rootName);

/// Writes at the stream's position.
void XMLSerialize(const QObject& object, QIODevice& stream, const string& rootName);

/// Fills `object` in place from a file and returns it. After an exception it may be partly filled. Raises
/// EFileError, also for anything that is no regular file, or EXmlError.
QObject& XMLDeserialize(QObject& object, const string& fileName, const string& rootName);

/// Reads from the stream's position to its end.
QObject& XMLDeserialize(QObject& object, QIODevice& stream, const string& rootName);
