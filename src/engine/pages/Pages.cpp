#include "engine/pages/Pages.h"

#include "engine/pages/PageObject.h"
#include "engine/pdf/Errors.h"

#include <atomic>
#include <cmath>

namespace {

constexpr TPageBox LetterSize{0, 0, 612, 792}; // what readers assume for a page without a size

std::optional<TPageBox> BoxOf(QPDFObjectHandle array) {
    if (!array.isArray() || array.getArrayNItems() < 4)
        return std::nullopt;
    Double values[4];
    for (int i = 0; i < 4; ++i) {
        QPDFObjectHandle item = array.getArrayItem(i);
        if (!item.isNumber())
            return std::nullopt;
        values[i] = item.getNumericValue();
        if (!std::isfinite(values[i]))
            return std::nullopt;
    }
    const TPageBox box = TPageBox{values[0], values[1], values[2], values[3]}.Normalised();
    return box.IsEmpty() ? std::nullopt : std::optional(box);
}

TPageGeometry GeometryOf(const TPageObject& page) {
    TPageGeometry geometry;
    const TPageBox media =
        page.Dict.isInitialized() ? BoxOf(page.Attribute("/MediaBox")).value_or(LetterSize) : page.BlankBox;
    const auto crop = page.NewCrop                ? page.NewCrop
                      : page.Dict.isInitialized() ? BoxOf(page.Attribute("/CropBox"))
                                                  : std::nullopt;
    geometry.Crop = crop.value_or(media).CutBy(media);
    if (geometry.Crop.IsEmpty())
        geometry.Crop = media;
    geometry.Rotation = page.Rotation();
    QPDFObjectHandle unit = page.Dict.isInitialized() ? Entry(page.Dict, "/UserUnit") : page.Dict;
    if (unit.isInitialized() && unit.isNumber() && unit.getNumericValue() > 0)
        geometry.UserUnit = unit.getNumericValue();
    return geometry;
}

quint64 NextId() {
    static std::atomic<quint64> last = 0;
    return ++last;
}

} // namespace

int TPageObject::Rotation() const {
    if (NewRotation)
        return *NewRotation;
    if (!Dict.isInitialized())
        return 0;
    QPDFObjectHandle rotate = Attribute("/Rotate");
    if (rotate.isInteger())
        return NormalRotation(rotate.getIntValue());
    return rotate.isReal() ? NormalRotation(std::llround(std::fmod(rotate.getNumericValue(), 360))) : 0;
}

QPDFObjectHandle TPageObject::Attribute(const char* key) const {
    return ::Attribute(Dict, Inherited.get(), key);
}

std::unique_ptr<TPageObject> OwnPage(const TPDFSourcePtr& source, size_t index) {
    const TWalkedPage& walked = source->Walk.Pages[index];
    auto page = std::make_unique<TPageObject>();
    page->Origin = TPageOrigin::Own;
    page->Dict = walked.Dict;
    page->Inherited = walked.Inherited;
    page->FileIndex = int(index);
    if (!walked.Repeated)
        return page;
    auto copy = CopyOf(*page, source, -int(index));
    copy->FileIndex = int(index);
    return copy;
}

std::unique_ptr<TPageObject> CopyOf(const TPageObject& page, const TPDFSourcePtr& source, int batch) {
    auto copy = std::make_unique<TPageObject>(page);
    copy->FileIndex = -1;
    if (page.Origin == TPageOrigin::Blank)
        return copy;
    if (page.Origin == TPageOrigin::Own) {
        copy->Origin = TPageOrigin::Copy;
        copy->Source = source;
        copy->CopiedFrom = page.Dict.getObjGen();
        copy->Dict = QPDFObjectHandle(page.Dict).shallowCopy();
    }
    copy->Batch = batch;
    return copy;
}

std::unique_ptr<TPageObject> BlankPage(Double width, Double height) {
    auto page = std::make_unique<TPageObject>();
    page->BlankBox = {0, 0, width, height};
    return page;
}

TZQPDFPage::TZQPDFPage(std::unique_ptr<TPageObject> object) : FId(NextId()), FObject(std::move(object)) {}
TZQPDFPage::~TZQPDFPage() = default;

std::weak_ptr<TZQPDFPage> TZQPDFPage::Handle() {
    if (!FHandle)
        FHandle = std::shared_ptr<TZQPDFPage>(this, [](TZQPDFPage*) {});
    return FHandle;
}

Single TZQPDFPage::GetWidth() const {
    return FWidth >= 0 ? FWidth : Single(Geometry().Width());
}

Single TZQPDFPage::GetHeight() const {
    return FHeight >= 0 ? FHeight : Single(Geometry().Height());
}

void TZQPDFPage::ResetLayout() {
    FObject->Geometry.reset();
    FWidth = FHeight = -1;
    FRendered = false;
}

const TPageGeometry& TZQPDFPage::Geometry() const {
    if (!FObject->Geometry)
        FObject->Geometry = GeometryOf(*FObject);
    return *FObject->Geometry;
}

TZQPDFPage& TZQPDFPages::getItem(int index) const {
    if (index < 0 || index >= Count())
        throw EPDFError(QStringLiteral("Page %1 does not exist.").arg(index + 1));
    return *FItems[size_t(index)];
}
