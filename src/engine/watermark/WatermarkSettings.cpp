#include "engine/watermark/WatermarkSettings.h"

#include "engine/document/Document.h"
#include "engine/watermark/WatermarkGroup.h"
#include "xml/Xmlserial.h"

void TPDFWatermarkSettings::Assign(TPDFWatermarkSettings* Other) {
    if (Other == nullptr)
        return;
    for (const QMetaProperty& member : Reflection::Members(staticMetaObject))
        member.write(this, member.read(Other));
}

void TPDFWatermarkSettings::LoadFromFile(const TFileName& FileName) {
    XMLDeserialize(*this, FileName, {});
}

void TPDFWatermarkSettings::SaveToFile(const TFileName& FileName) {
    XMLSerialize(*this, FileName, /*compact=*/false, {});
}

TZQPDFXObjectGroup* TPDFWatermarkSettings::CreateXObject(TZQPDFDocument& document, bool cached) const {
    auto group = std::make_unique<TPDFWatermarkGroup>(document, *this);
    if (cached)
        document.XObjects().Add(group.get());
    return group.release();
}
