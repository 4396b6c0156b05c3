#include "engine/layers/LayeredPage.h"

#include "engine/layers/PlacedContent.h"
#include "engine/pages/PageObject.h"
#include "engine/pages/Pages.h"

namespace {

class TLayeredPage : public TZQPDFPage {
public:
    using TZQPDFPage::TZQPDFPage;

    TZQLayerCollection& Layers() override { return Placed().Layers; }

    void updateXObject(TZQPDFDocument& /*document*/, TZQPDFXObjectGroup& group) override {
        Placed().Groups.push_back({&group, Geometry()});
        Placed().GroupsChanged = true;
    }

    [[nodiscard]] TPlacedContent* Content() const override { return FContent.get(); }

private:
    TPlacedContent& Placed() {
        if (!FContent)
            FContent = std::make_unique<TPlacedContent>(*this);
        return *FContent;
    }

    std::unique_ptr<TPlacedContent> FContent;
};

} // namespace

std::unique_ptr<TZQPDFPage> NewPage(std::unique_ptr<TPageObject> object) {
    return std::make_unique<TLayeredPage>(std::move(object));
}
