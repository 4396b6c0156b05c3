#pragma once
// The stamps that people have defined, by category.
#include "xml/XmlMarks.h"

#include <QMap>
#include <QStringList>

struct TPDFStampCategory {
    Q_GADGET
    XML_ELEMENT(Stamps, "Stamps", "Stamp")
public:
    FIELD(string, Name);
    FIELD(QStringList, Stamps); ///< their names
    bool operator==(const TPDFStampCategory&) const = default;
};
using TPDFStampCategories = QList<TPDFStampCategory>;

class TZQPDFObjectsRepository : public QObject {
    Q_OBJECT
    XML_ROOT("ObjectsRepository", false)
    XML_ELEMENT(Categories, "Categories", "Category")
public:
    /// Reads the file; without one the repository is empty. Raises EFileError or EXmlError.
    explicit TZQPDFObjectsRepository(const string& FileName);

    PUBLISHED(TPDFStampCategories, Categories, FCategories);

    /// From the name of a category to the names of its stamps.
    [[nodiscard]] QMap<string, QStringList> GetCategories() const;
};

/// The process-wide repository, read at its first use.
[[nodiscard]] const TZQPDFObjectsRepository& GetObjectsRepository();
