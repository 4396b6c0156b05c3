#include "engine/watermark/ObjectsRepository.h"

#include "base/Paths.h"
#include "engine/watermark/EditorApp.h"
#include "xml/Xmlserial.h"

TZQPDFObjectsRepository::TZQPDFObjectsRepository(const string& FileName) {
    if (FileExists(FileName))
        XMLDeserialize(*this, FileName, {});
}

QMap<string, QStringList> TZQPDFObjectsRepository::GetCategories() const {
    QMap<string, QStringList> categories;
    for (const TPDFStampCategory& category : FCategories)
        categories[category.Name] += category.Stamps;
    return categories;
}

const TZQPDFObjectsRepository& GetObjectsRepository() {
    static const TZQPDFObjectsRepository repository(TPDFEditorApp::RepositoryFilename());
    return repository;
}
