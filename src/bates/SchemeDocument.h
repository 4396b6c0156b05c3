#pragma once
// The scheme file in memory, an XML document:
//
//   <?xml version="1.0" encoding="UTF-8"?>
//   <batesstamps>
//     <batestamp id="Court">
//       <headerleft/> ... <fontname>Arial</fontname> ... <batesnumbers/>
//     </batestamp>
//   </batesstamps>
//
// The root has two s in the middle and the element of a scheme one: that is the format. A scheme is found by
// its "id", the first one where several have the same; elements of other names count as well. Elements,
// attributes, comments and layout that nobody here knows stay as they are.
#include "bates/BatesSetting.h"

#include <QStringList>

#include <memory>

class TSchemeDocument {
public:
    /// A document without schemes.
    TSchemeDocument();
    /// That of a file. Raises EFileError or EXmlError (xml/XmlParser.h has the limits).
    explicit TSchemeDocument(const string& fileName);
    ~TSchemeDocument();

    [[nodiscard]] QByteArray Bytes() const;
    /// The same for the file of that name. Raises EXmlError where it couldn't be read again: a good file is
    /// never replaced by a bad one.
    [[nodiscard]] QByteArray CheckedBytes(const string& fileName) const;

    /// The ids in the order of the file, as they stand there.
    [[nodiscard]] QStringList Ids() const;
    /// Fills `scheme` from the scheme of that id; false if there is none.
    [[nodiscard]] bool Read(const string& id, TZQPDFBatesSetting& scheme) const;
    /// Puts the scheme under its name, in place of the one that has it, else at the end. Raises Exception,
    /// and changes nothing, where a text can't be held.
    void Write(const TZQPDFBatesSetting& scheme);
    void Remove(const string& id);

private:
    struct Impl;
    std::unique_ptr<Impl> FImpl;
};
