#include "engine/render/SinglePage.h"

#include "engine/decode/DecodeBudget.h"
#include "engine/import/ObjectCopier.h"
#include "engine/pages/SharedResources.h"
#include "engine/render/UprightAnnotations.h"
#include "engine/save/PageContent.h"
#include "engine/save/PageTreeWriter.h"

#include <qpdf/Buffer.hh>
#include <qpdf/Pl_Discard.hh>
#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <algorithm>
#include <unordered_set>

namespace {

constexpr const char* PageKeys[] = {"/Contents", "/Group", "/UserUnit"};

/// Where annotations lead to, and what they carry but don't show.
constexpr const char* NotPainted[] = {
    "/A",  "/AA",  "/Dest",  "/FS",    "/IRT",          "/Kids",   "/Movie",           "/P",
    "/PA", "/3DD", "/Popup", "/Sound", "/StructParent", "/Parent", "/RichMediaContent"};

/// What a widget takes from the fields above it (ISO 32000-1, 12.7.3.1).
constexpr const char* FieldKeys[] = {"/FT", "/Ff", "/V", "/DV", "/DA", "/Q", "/MaxLen", "/Opt"};
constexpr int MaxFieldDepth = 100;

constexpr int FewXObjects = 8; // as many as one page may be expected to show

class TSinglePage {
public:
    TSinglePage(QPDF& pdf, const TPageObject& page, const TPDFSourcePtr& source)
        : FPage(page), FSource(source), FPdf(pdf), FCopier(pdf, source) {}

    /// `target` becomes the page of the document.
    void CopyInto(QPDFObjectHandle target) {
        FCopier.MapPage(FPage.Origin == TPageOrigin::Own ? FPage.Dict.getObjGen() : FPage.CopiedFrom, target);
        for (const char* key : PageKeys)
            Take(Entry(FPage.Dict, key), target, key);
        Take(FPage.Attribute("/Resources"), target, "/Resources");
        CopyAnnotations(target);
        QPDFObjectHandle from = FSource->Pdf->getRoot();
        Take(Entry(from, "/OCProperties"), FPdf.getRoot(), "/OCProperties");
        CopyFormDefaults(Entry(from, "/AcroForm"));
        FCopier.Finish();
        TurnUpright(target, FPage.Rotation());
        QPDFObjectHandle drawn = Entry(target.getKey("/Resources"), "/XObject");
        if (drawn.isDictionary() && drawn.getKeys().size() > FewXObjects)
            DropUnusedResources(target);
        ShowWidgets(target);
        RequirePaintable(target);
    }

private:
    void Take(const QPDFObjectHandle& value, QPDFObjectHandle to, const char* key) {
        if (value.isInitialized() && !QPDFObjectHandle(value).isNull())
            to.replaceKey(key, FCopier.Copy(value));
    }

    void CopyAnnotations(QPDFObjectHandle target) {
        QPDFObjectHandle annotations = Entry(FPage.Dict, "/Annots");
        if (!annotations.isArray())
            return;
        QPDFObjectHandle copies = QPDFObjectHandle::newArray();
        for (QPDFObjectHandle annotation : annotations.getArrayAsVector())
            if (annotation.isDictionary())
                copies.appendItem(FPdf.makeIndirectObject(CopyOf(annotation)));
        target.replaceKey("/Annots", copies);
    }

    /// Widgets are left to whoever fills forms, and no painter shows them by itself; the same appearance
    /// under another name is painted. A form may leave it to the viewer to make that from the values.
    void ShowWidgets(QPDFObjectHandle target) {
        std::vector<QPDFObjectHandle> widgets;
        if (QPDFObjectHandle annotations = target.getKey("/Annots"); annotations.isArray())
            for (const QPDFObjectHandle& annotation : annotations.getArrayAsVector())
                if (IsName(Entry(annotation, "/Subtype"), "/Widget"))
                    widgets.push_back(annotation);
        if (QPDFObjectHandle form = FPdf.getRoot().getKey("/AcroForm"); form.isDictionary()) {
            form.replaceKey("/Fields", QPDFObjectHandle::newArray(widgets));
            MakeAppearances(widgets);
        }
        for (QPDFObjectHandle& widget : widgets)
            widget.replaceKey("/Subtype", QPDFObjectHandle::newName("/Stamp"));
    }

    QPDFObjectHandle CopyOf(QPDFObjectHandle annotation) {
        QPDFObjectHandle copy = QPDFObjectHandle::newDictionary();
        for (auto& [key, value] : annotation.getDictAsMap())
            if (std::find(std::begin(NotPainted), std::end(NotPainted), key) == std::end(NotPainted))
                copy.replaceKey(key, FCopier.Copy(value));
        QPDFObjectHandle field = annotation;
        for (int depth = 0; depth < MaxFieldDepth && field.isDictionary(); ++depth) {
            for (const char* key : FieldKeys)
                if (!copy.hasKey(key))
                    Take(field.getKey(key), copy, key);
            field = field.getKey("/Parent");
        }
        return copy;
    }

    /// The painter decodes as much as there is: content, and whatever passes several filters, which no more
    /// than hostile pages need.
    void RequirePaintable(QPDFObjectHandle page) {
        constexpr qint64 MaxStage = 256 << 20;
        TDecodeBudget budget(MaxStage, 2 * MaxStage);
        const TDecodeScope scope(budget);
        std::unordered_set<quint64> contents;
        for (const QPDFObjectHandle& part : page.getKey("/Contents").wrapInArray().getArrayAsVector())
            contents.insert(KeyOf(part));
        for (QPDFObjectHandle& object : FPdf.getAllObjects()) {
            if (!object.isStream())
                continue;
            QPDFObjectHandle filter = object.getDict().getKey("/Filter");
            if (!contents.contains(KeyOf(object)) && !IsName(object.getDict().getKey("/Subtype"), "/Form") &&
                !(filter.isArray() && filter.getArrayNItems() > 1))
                continue;
            Pl_Discard nowhere;
            object.pipeStreamData(&nowhere, nullptr, 0, qpdf_dl_specialized, /*suppress_warnings*/ true,
                                  /*will_retry*/ false);
            budget.RequireKept(QStringLiteral("The contents of a page"));
        }
    }

    /// Widgets of a form that is too damaged for it keep the appearance that they have.
    void MakeAppearances(const std::vector<QPDFObjectHandle>& widgets) {
        try {
            QPDFAcroFormDocumentHelper form(FPdf);
            if (!form.getNeedAppearances())
                return;
            form.generateAppearancesIfNeeded();
            // The library leaves them to filters of the writer, which work on streams that it decodes.
            for (const QPDFObjectHandle& widget : widgets)
                if (QPDFObjectHandle shown = Entry(Entry(widget, "/AP"), "/N"); shown.isStream())
                    shown.replaceStreamData(shown.getStreamData(), QPDFObjectHandle::newNull(),
                                            QPDFObjectHandle::newNull());
        } catch (const std::exception&) {
            return;
        }
    }

    void CopyFormDefaults(const QPDFObjectHandle& form) {
        QPDFObjectHandle copy = QPDFObjectHandle::newDictionary();
        for (const char* key : {"/DA", "/DR", "/NeedAppearances", "/Q"})
            Take(Entry(form, key), copy, key);
        if (QPDFObjectHandle(form).isDictionary())
            FPdf.getRoot().replaceKey("/AcroForm", copy);
    }

    const TPageObject& FPage;
    const TPDFSourcePtr& FSource;
    QPDF& FPdf;
    TObjectCopier FCopier;
};

/// The boxes as displayed, and the paper below what is there.
void LayOut(QPDF& pdf, QPDFObjectHandle page, const TPageGeometry& geometry) {
    const TPageBox& box = geometry.Crop;
    const QPDFObjectHandle::Rectangle rectangle(box.x0, box.y0, box.x1, box.y1);
    page.replaceKey("/MediaBox", QPDFObjectHandle::newArray(rectangle));
    page.replaceKey("/Rotate", QPDFObjectHandle::newInteger(geometry.Rotation));
    const QByteArray paper = "q 1 g " + QByteArray::number(box.x0 - 1, 'f') + ' ' +
                             QByteArray::number(box.y0 - 1, 'f') + ' ' +
                             QByteArray::number(box.Width() + 2, 'f') + ' ' +
                             QByteArray::number(box.Height() + 2, 'f') + " re f Q\n";
    std::vector<QPDFObjectHandle> contents{QPDFObjectHandle::newStream(&pdf, paper.toStdString())};
    QPDFObjectHandle originals = page.getKey("/Contents");
    if (originals.isStream())
        contents.push_back(originals);
    else if (originals.isArray())
        for (const QPDFObjectHandle& stream : originals.getArrayAsVector())
            contents.push_back(stream);
    page.replaceKey("/Contents", QPDFObjectHandle::newArray(contents));
}

/// What was put on pages becomes objects of the source, as a save would make it.
void MakeObjects(TDocumentCore& core) {
    if (!core.Source)
        core.Source = NewSource();
    try {
        ApplyPages(core);
        ApplyContent(core);
    } catch (const Exception&) {
        throw;
    } catch (const std::exception& e) {
        throw Translated(e, QStringLiteral("paint a page of"), core.FileName);
    }
}

std::string BytesOf(QPDF& pdf) {
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setCompressStreams(false);
    writer.setDecodeLevel(qpdf_dl_none);
    writer.setObjectStreamMode(qpdf_o_disable);
    writer.write();
    const auto buffer = writer.getBufferSharedPointer();
    return {reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize()};
}

} // namespace

std::string SinglePagePdf(TDocumentCore& core, int page) {
    TZQPDFPage& item = core.Pages.getItem(page);
    if (HasPendingContent(item))
        MakeObjects(core);
    const TPageObject& object = item.Object();
    const TPDFSourcePtr& source = object.Origin == TPageOrigin::Own ? core.Source : object.Source;
    try {
        QPDF pdf;
        pdf.setSuppressWarnings(true);
        pdf.emptyPDF();
        QPDFObjectHandle copy = pdf.makeIndirectObject(QPDFObjectHandle::parse("<< /Type /Page >>"));
        pdf.addPage(copy, /*first*/ true);
        if (object.Origin != TPageOrigin::Blank)
            TSinglePage(pdf, object, source).CopyInto(copy);
        LayOut(pdf, copy, item.Geometry());
        std::string bytes = BytesOf(pdf);
        if (source && source->Input)
            source->Input->RequireSound();
        return bytes;
    } catch (const Exception&) {
        throw;
    } catch (const std::exception& e) {
        throw Translated(e, QStringLiteral("paint a page of"), source ? source->Path : core.FileName);
    }
}
