#include "engine/save/PageContent.h"

#include "engine/content/ContentReader.h"
#include "engine/layers/Drawing.h"
#include "engine/layers/PlacedContent.h"
#include "engine/save/EarlierForms.h"

#include <unordered_map>

namespace {

QPDFObjectHandle::Matrix MatrixOf(const TPageGeometry& geometry) {
    const auto m = geometry.FormMatrix();
    return {m[0], m[1], m[2], m[3], m[4], m[5]};
}

/// What a group looks like on pages of the same geometry.
struct TGroupForm {
    TPageGeometry Geometry;
    QPDFObjectHandle Form;
};

/// The content of `stream`, byte for byte, as a form. The boxes of a page bound what it shows as they did.
QPDFObjectHandle NewForm(QPDF& pdf, const QPDFObjectHandle& stream, const QPDFObjectHandle& box,
                         const QPDFObjectHandle& resources) {
    QPDFObjectHandle form = pdf.newStream();
    QPDFObjectHandle dict = form.getDict();
    QPDFObjectHandle from = QPDFObjectHandle(stream).getDict();
    dict.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dict.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dict.replaceKey("/BBox", box);
    dict.replaceKey("/Resources", resources);
    form.replaceStreamData(
        [stream](Pipeline* out, bool suppressWarnings, bool willRetry) {
            return QPDFObjectHandle(stream).pipeStreamData(out, nullptr, 0, qpdf_dl_none, suppressWarnings,
                                                           willRetry);
        },
        from.getKey("/Filter"), from.getKey("/DecodeParms"));
    return form;
}

class TPageWriter {
public:
    TPageWriter(TDocumentDrawing& drawing, TContentReader& reader) : FDrawing(drawing), FReader(reader) {}

    /// `number` is the page's, for warnings.
    void Write(TPageObject& page, TPlacedContent& placed, int number) {
        FNumber = number;
        Take(page, placed);
        FBehind.clear();
        FAbove.clear();
        DrawLayers(placed);
        for (const TPlacedGroup& group : placed.Groups)
            DrawGroup(group);
        if (FBehind.empty() && FAbove.empty())
            Restore(page, placed);
        else
            Frame(page, placed);
        WriteAnnotations(page, placed);
        placed.Layers.Settle();
        placed.GroupsChanged = false;
    }

    /// Numbers of pages whose contents can't be read to their end.
    [[nodiscard]] const std::vector<int>& Damaged() const { return FDamaged; }

private:
    static void Take(const TPageObject& page, TPlacedContent& placed) {
        if (placed.Resources.isInitialized())
            return;
        placed.Contents = Entry(page.Dict, "/Contents");
        placed.Resources = page.Attribute("/Resources");
    }

    /// One form for each run of layers that were placed on the same geometry, which is nearly always one.
    void DrawLayers(const TPlacedContent& placed) {
        const auto& layers = placed.Layers.Items();
        for (auto i = size_t(placed.Layers.FirstLive()); i < layers.size();) {
            const TPageGeometry geometry = layers[i]->Geometry();
            TFormContent content;
            TDrawing drawing(FDrawing, content, geometry.Width(), geometry.Height());
            for (; i < layers.size() && layers[i]->Geometry() == geometry; ++i) {
                layers[i]->Draw(drawing);
                layers[i]->DropLayout();
            }
            if (!content.IsEmpty())
                FAbove.push_back(MakeForm(content, geometry));
        }
    }

    void DrawGroup(const TPlacedGroup& placed) {
        QPDFObjectHandle form = KnownForm(placed);
        if (!form.isInitialized()) {
            form = MakeGroupForm(placed);
            if (placed.Group->Type() == TZQPDFXObjectGroupType::Watermark)
                FGroupForms[placed.Group].push_back({placed.Geometry, form});
        }
        if (form.isStream())
            (placed.Group->IsBehind() ? FBehind : FAbove).push_back(form);
    }

    QPDFObjectHandle KnownForm(const TPlacedGroup& placed) const {
        const auto known = FGroupForms.find(placed.Group);
        if (known != FGroupForms.end())
            for (const TGroupForm& form : known->second)
                if (form.Geometry == placed.Geometry)
                    return form.Form;
        return {};
    }

    /// Null where the group shows nothing.
    QPDFObjectHandle MakeGroupForm(const TPlacedGroup& placed) {
        TFormContent content;
        const std::string subtype = placed.Group->ArtifactSubtype();
        content.Raw("/Artifact <</Type /Pagination");
        if (!subtype.empty())
            content.Raw(" /Subtype ").Raw(subtype);
        content.Op(">> BDC");
        const size_t empty = content.Data().size();
        TDrawing drawing(FDrawing, content, placed.Geometry.Width(), placed.Geometry.Height());
        placed.Group->Draw(drawing);
        placed.Group->DropLayout();
        if (content.Data().size() == empty)
            return QPDFObjectHandle::newNull();
        content.Op("EMC");
        return MakeForm(content, placed.Geometry);
    }

    QPDFObjectHandle MakeForm(const TFormContent& content, const TPageGeometry& geometry) {
        return content.MakeForm(FDrawing.Pdf, {0, 0, geometry.Width(), geometry.Height()},
                                MatrixOf(geometry));
    }

    static void Restore(TPageObject& page, const TPlacedContent& placed) {
        const auto set = [&](const char* key, QPDFObjectHandle value) {
            if (value.isNull())
                page.Dict.removeKey(key);
            else
                page.Dict.replaceKey(key, value);
        };
        set("/Contents", placed.Contents);
        set("/Resources", placed.Resources);
    }

    /// Contents become an opening, the originals and a closing that draws the forms. The texts of opening
    /// and closing are few in a document, and pages share the streams.
    void Frame(TPageObject& page, const TPlacedContent& placed) {
        QPDFObjectHandle resources = OwnResources(placed.Resources);
        QPDFObjectHandle xobjects = resources.getKey("/XObject");
        TReadContent original = FReader.Read(placed.Contents);
        if (original.Damaged)
            Enclose(page, original, xobjects);
        std::string opening = DrawForms(FBehind, xobjects);
        std::string closing;
        if (!original.Streams.empty()) {
            opening += "q\n";
            closing = "\n" + original.Closing + "Q\n";
        }
        closing += DrawForms(FAbove, xobjects);

        std::vector<QPDFObjectHandle> streams;
        if (!opening.empty())
            streams.push_back(FDrawing.SharedStream(opening));
        streams.insert(streams.end(), original.Streams.begin(), original.Streams.end());
        if (!closing.empty())
            streams.push_back(FDrawing.SharedStream(closing));
        page.Dict.replaceKey("/Contents",
                             streams.size() == 1 ? streams[0] : QPDFObjectHandle::newArray(streams));
        page.Dict.replaceKey("/Resources", resources);
    }

    /// Damaged originals become a form of their own, which each reader leaves where it gives up on them, in
    /// the state that it began with.
    void Enclose(const TPageObject& page, TReadContent& original, QPDFObjectHandle& xobjects) {
        FDamaged.push_back(FNumber);
        QPDFObjectHandle box = page.Attribute("/MediaBox");
        if (!box.isRectangle())
            box =
                QPDFObjectHandle::newArray(QPDFObjectHandle::Rectangle(0, 0, 612, 792)); // as for such pages
        QPDFObjectHandle resources = page.Attribute("/Resources");
        if (!resources.isDictionary())
            resources = QPDFObjectHandle::newDictionary();
        const QPDFObjectHandle form = NewForm(FDrawing.Pdf, original.Streams[0], box, resources);
        original.Streams = {FDrawing.SharedStream(DrawForms({form}, xobjects))};
    }

    /// A copy for this page: dictionaries of resources are shared between pages.
    static QPDFObjectHandle OwnResources(QPDFObjectHandle resources) {
        resources = resources.isDictionary() ? resources.shallowCopy() : QPDFObjectHandle::newDictionary();
        QPDFObjectHandle xobjects = resources.getKey("/XObject");
        xobjects = xobjects.isDictionary() ? xobjects.shallowCopy() : QPDFObjectHandle::newDictionary();
        resources.replaceKey("/XObject", xobjects);
        return resources;
    }

    static std::string DrawForms(const std::vector<QPDFObjectHandle>& forms, QPDFObjectHandle& xobjects) {
        std::string operators;
        int number = 0;
        for (const QPDFObjectHandle& form : forms) {
            std::string name;
            do
                name = FormName(number++);
            while (xobjects.hasKey(name));
            xobjects.replaceKey(name, form);
            operators += name + " Do\n";
        }
        return operators;
    }

    void WriteAnnotations(TPageObject& page, TPlacedContent& placed) {
        const auto isOurs = [&](const QPDFObjectHandle& annotation) {
            return std::any_of(placed.Annotations.begin(), placed.Annotations.end(),
                               [&](const QPDFObjectHandle& own) { return own.isSameObjectAs(annotation); });
        };
        TAnnotationDrawing drawing{FDrawing, page.Dict, {}};
        const auto& layers = placed.Layers.Items();
        for (auto i = size_t(placed.Layers.FirstLive()); i < layers.size(); ++i)
            layers[i]->WriteAnnotation(drawing);
        if (drawing.Annotations.empty() && placed.Annotations.empty())
            return;
        std::vector<QPDFObjectHandle> all;
        if (QPDFObjectHandle array = Entry(page.Dict, "/Annots"); array.isArray())
            for (const QPDFObjectHandle& annotation : array.getArrayAsVector())
                if (!isOurs(annotation))
                    all.push_back(annotation);
        placed.Annotations = drawing.Annotations;
        all.insert(all.end(), placed.Annotations.begin(), placed.Annotations.end());
        page.Dict.replaceKey("/Annots", QPDFObjectHandle::newArray(all));
    }

    TDocumentDrawing& FDrawing;
    TContentReader& FReader;
    std::vector<QPDFObjectHandle> FBehind;
    std::vector<QPDFObjectHandle> FAbove;
    std::vector<int> FDamaged;
    int FNumber = 0;
    std::unordered_map<const TZQPDFXObjectGroup*, std::vector<TGroupForm>> FGroupForms;
};

} // namespace

std::string FormName(int number) {
    return "/Mv" + std::to_string(number);
}

bool HasPendingContent(const TZQPDFPage& page) {
    return page.Content() != nullptr && page.Content()->IsPending();
}

void ApplyContent(TDocumentCore& core) {
    std::optional<TContentReader> reader;
    std::optional<TPageWriter> writer;
    int number = 0;
    for (const auto& item : core.Pages.Items()) {
        ++number;
        if (!HasPendingContent(*item))
            continue;
        if (!core.Drawing) {
            core.Drawing = std::make_unique<TDocumentDrawing>(*core.Source->Pdf);
            core.Drawing->Fonts.SetEarlierFonts([&core] { return FontsOfEarlierForms(core); });
        }
        if (!writer)
            writer.emplace(*core.Drawing, reader.emplace(*core.Source->Pdf, StoredBytes(*core.Source)));
        writer->Write(item->Object(), *item->Content(), number);
    }
    if (!writer)
        return;
    for (const int damaged : writer->Damaged())
        core.Warnings.Add(TWarningKind::DamageContentUnreadable,
                          QStringLiteral("The contents of page %1 can't be read to their end.").arg(damaged));
    core.Drawing->Fonts.Fill();
}
