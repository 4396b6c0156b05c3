#pragma once
// One configuration file that is looked over: its contents, the lines that they stand in, and its faults.
#include "xml/ObjectReader.h"

#include <QHash>
#include <QStringList>

#include <vector>

class TLintedFile {
public:
    /// Reads the file into `object`, as far as it can be read. What is wrong with its form is a fault
    /// already.
    TLintedFile(const string& path, QObject& object);

    /// False for a file that can't be opened or is malformed: it tells nothing of what stands in it.
    [[nodiscard]] bool IsRead() const { return FRead; }
    void Fault(int line, const string& what) { FFaults.push_back({line, what}); }
    /// The faults in the order of their lines, each with its place.
    [[nodiscard]] QStringList Faults() const;

    /// The element that an object of the file stands in, which must be of this file.
    [[nodiscard]] const TXmlElement& ElementOf(const QObject& object) const { return *FElements[&object]; }
    [[nodiscard]] const TXmlElement& Root() const { return FDocument.Root; }

private:
    void Read(QObject& object);

    struct TFault {
        int Line; ///< 0 where the text names the place itself
        string What;
    };

    string FPath;
    bool FRead = false;
    TXmlDocument FDocument;
    std::vector<TFault> FFaults;
    QHash<const QObject*, const TXmlElement*> FElements;
};

/// The child of that name, regardless of the case of A to Z; null if there is none.
[[nodiscard]] const TXmlElement* ChildOf(const TXmlElement& element, const string& name);
/// The line of what stands at a path of names below an element, as far as the path can be followed.
[[nodiscard]] int LineOf(const TXmlElement& element, const QStringList& path);
