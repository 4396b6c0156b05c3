#include "scripting/DocumentScripting.h"

#include "engine/core/Permissions.h"
#include "engine/layers/LayerImage.h"
#include "engine/layers/LayerText.h"
#include "engine/watermark/WatermarkSettings.h"
#include "scripting/GlobalFunctions.h"
#include "scripting/ScriptBates.h"

namespace {

/// Nothing reads the flags of the second call; it is told apart because they belong to it.
constexpr TJSExportOptions ContentOptions = 0b1001;

const QList<const QMetaObject*>& DocumentClasses() {
    static const QList<const QMetaObject*> classes{&TJSPDFDocument::staticMetaObject,
                                                   &TPDFDocPermissions::staticMetaObject};
    return classes;
}

const QList<const QMetaObject*>& ContentClasses() {
    // A class of something that is put on pages adds its line here.
    static const QList<const QMetaObject*> classes{&TPDFWatermarkSettings::staticMetaObject,
                                                   &TZQPDFText::staticMetaObject,
                                                   &TZQPDFImage::staticMetaObject};
    return classes;
}

/// The store of Bates schemes, so that a script can number files one after the other.
const QList<const QMetaObject*>& BatesClasses() {
    static const QList<const QMetaObject*> classes{&TJSBatesDictionary::staticMetaObject};
    return classes;
}

} // namespace

QList<const QMetaObject*> ScriptClasses() {
    return DocumentClasses() + ContentClasses() + BatesClasses();
}

TJSDocumentScripting::TJSDocumentScripting(TJSPDFDocument* Document, Cardinal MaxMemory)
    : TJSEngine(MaxMemory) {
    registerClasses(DocumentClasses());
    registerClasses(ContentClasses(), ContentOptions);
    registerClasses(BatesClasses());
    registerGlobalFunctions(TJSGlobalFunctions::staticMetaObject);
    if (Document != nullptr)
        const TJSClass bound(*Document, *this, QStringLiteral("Document"));
    Declare(0, QStringLiteral("ENC_ALGORITHM_40_RC4"));
    Declare(1, QStringLiteral("ENC_ALGORITHM_128_RC4"));
    Declare(2, QStringLiteral("ENC_ALGORITHM_128_AES"));
    Declare(3, QStringLiteral("ENC_ALGORITHM_256_AES"));
}
