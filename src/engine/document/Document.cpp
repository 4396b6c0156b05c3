#include "engine/document/Document.h"

#include "base/PartFile.h"
#include "engine/core/DocumentCore.h"
#include "engine/layers/LayeredPage.h"
#include "engine/layers/PlacedContent.h"
#include "engine/pdf/Metadata.h"
#include "engine/pdf/Signatures.h"
#include "engine/save/Encryption.h"
#include "engine/save/InfoWriter.h"
#include "engine/save/Writer.h"

namespace {

/// Fills the page list of a new core from its source.
void TakePages(TDocumentCore& core) {
    const size_t count = core.Source->Walk.Pages.size();
    core.Pages.Items().reserve(count);
    for (size_t i = 0; i < count; ++i)
        core.Pages.Items().push_back(NewPage(OwnPage(core.Source, i)));
}

/// What was read must have been readable: libqpdf takes a failing disk for damage.
void RequireSoundSources(const TPDFSource& source) {
    if (source.Input)
        source.Input->RequireSound();
    for (const auto& kept : source.Kept)
        RequireSoundSources(*kept);
}

void GrantReading(const TPDFSource& source) {
    if (source.Input)
        source.Input->GrantReading();
    for (const auto& kept : source.Kept)
        GrantReading(*kept);
}

/// The password with which the file just written opens as this document did.
NarrowString PasswordForWritten(const TDocumentCore& core) {
    if (core.Protection == TProtection::AsOpened)
        return core.Source->Password;
    const auto* handler = dynamic_cast<const TPDFPasswordSecurityHandler*>(core.Handler.get());
    if (core.Protection == TProtection::Remove || !handler)
        return {};
    const string& owner = handler->OwnerPassword();
    return Narrow(owner.isEmpty() ? handler->UserPassword() : owner);
}

void TakeOver(TZQPDFPage& page, const TPDFSourcePtr& source, size_t index) {
    page.Object() = std::move(*OwnPage(source, index));
    if (page.Content() != nullptr)
        page.Content()->Freeze();
}

/// Goes over to the written file, whose pages are those of the list. The pages keep their identity.
void Rebind(TDocumentCore& core, const string& path) {
    TPDFSourcePtr written = OpenSource(path, PasswordForWritten(core));
    if (int(written->Walk.Pages.size()) != core.Pages.Count())
        throw EPDFError(QStringLiteral("\"%1\" doesn't hold the pages that were written.").arg(path));
    core.Drawing.reset();
    core.Source = std::move(written);
    core.Protection = TProtection::AsOpened;
    for (int i = 0; i < core.Pages.Count(); ++i)
        TakeOver(core.Pages.getItem(i), core.Source, size_t(i));
    if (core.Outlines)
        core.Outlines->Rebind(core.Root());
}

} // namespace

TPDFDocument::TPDFDocument(TComponent* owner) : TComponent(owner), FCore(std::make_unique<TDocumentCore>()) {}
TPDFDocument::~TPDFDocument() = default;

bool TPDFDocument::OpenFromFile(const string& fileName, const NarrowString& password, int descriptor,
                                TTestedFile tested) {
    auto core = std::make_unique<TDocumentCore>();
    core->Source = tested.Take(fileName, password, descriptor);
    if (!core->Source)
        core->Source = OpenSource(fileName, password, descriptor);
    core->FileName = fileName;
    core->Handler = HandlerOf(*core->Source);
    TakePages(*core);
    FCore = std::move(core);
    return true;
}

void TPDFDocument::WriteTo(TOutputFile& file) {
    const bool isSigned = GetSignaturesCount() > 0; // before the fields of deleted pages go
    if (FCore->Source)
        GrantReading(*FCore->Source);
    try {
        NewFullRewrite()->Write(*FCore, file);
    } catch (const Exception&) {
        throw;
    } catch (const std::exception& e) {
        throw Translated(e, QStringLiteral("write"), file.FinalPath());
    }
    RequireSoundSources(*FCore->Source);
    FCore->Source->CollectWarnings();
    FCore->SignatureBroken |= isSigned;
}

void TPDFDocument::WritePart(TPartFile& file) {
    WriteTo(file);
    if (FCore->Source->Input)
        file.TakeModeOf(FCore->Source->Input->Descriptor());
}

void TPDFDocument::SaveToFreeName(const string& fileName) {
    TPartFile file(fileName);
    WritePart(file);
    PublishFree(file);
}

bool TPDFDocument::SaveToPath(const string& fileName, bool keepSource, bool takeName) {
    TPartFile file(fileName);
    WritePart(file);
    file.PublishReplacing();
    if (!keepSource)
        Rebind(*FCore, fileName);
    if (takeName) {
        FCore->FileName = fileName;
        FCore->Modified = false;
    }
    return true;
}

bool TPDFDocument::SaveCopyToFile(const string& fileName, bool keepSource, bool takeName) {
    return SaveToPath(fileName, keepSource, takeName);
}

const string& TPDFDocument::FileName() const {
    return FCore->FileName;
}

TPDFWarnings TPDFDocument::Warnings() const {
    TPDFWarnings all;
    if (FCore->Source) {
        FCore->Source->CollectWarnings();
        all.Add(FCore->Source->Warnings);
    }
    all.Add(FCore->Warnings);
    if (FCore->SignatureBroken || (GetModified() && GetSignaturesCount() > 0))
        all.Add(TWarningKind::SignatureInvalidated,
                QStringLiteral("The document is signed; its signature doesn't cover the changes."));
    return all;
}

void TPDFDocument::ReleaseBulk() {
    FCore = std::make_unique<TDocumentCore>();
}

bool TPDFDocument::GetModified() const {
    return FCore->Modified;
}

void TPDFDocument::SetModified(bool modified) {
    FCore->Modified = modified;
}

void TPDFDocument::LockChanges() {
    ++FCore->Locks;
}

void TPDFDocument::UnlockChanges() {
    if (FCore->Locks > 0)
        --FCore->Locks;
}

void TPDFDocument::Changed() {
    if (FCore->Locks == 0)
        FCore->Modified = true;
}

void TPDFDocument::SetInfoString(const NarrowString& key, const string& value, bool keepExisting) {
    if (keepExisting && !GetInfoString(key).isEmpty())
        return;
    FCore->Changes.Info[key] = value;
    Changed();
}

string TPDFDocument::GetInfoString(const NarrowString& key) const {
    const auto changed = FCore->Changes.Info.find(key);
    if (changed != FCore->Changes.Info.end())
        return changed->second;
    return FCore->Source ? ReadInfo(*FCore->Source, key) : string();
}

NarrowString TPDFDocument::GetXMLMetaData() const {
    if (FCore->Changes.Xmp)
        return *FCore->Changes.Xmp;
    return FCore->Source ? ReadXmp(*FCore->Source->Pdf) : NarrowString();
}

void TPDFDocument::SetXMLMetaData(const NarrowString& xmp) {
    FCore->Changes.Xmp = xmp;
    Changed();
}

TPDFPageMode TPDFDocument::GetPageMode() const {
    if (FCore->Changes.PageMode)
        return *FCore->Changes.PageMode;
    return FCore->Source ? ReadPageMode(*FCore->Source) : TPDFPageMode::pmUseNone;
}

bool TPDFDocument::SetPageMode(TPDFPageMode mode) {
    FCore->Changes.PageMode = mode;
    Changed();
    return true;
}

TPDFPageLayout TPDFDocument::GetPageLayout() const {
    if (FCore->Changes.PageLayout)
        return *FCore->Changes.PageLayout;
    return FCore->Source ? ReadPageLayout(*FCore->Source) : TPDFPageLayout::plSinglePage;
}

bool TPDFDocument::SetPageLayout(TPDFPageLayout layout) {
    FCore->Changes.PageLayout = layout;
    Changed();
    return true;
}

TPDFEmbeddedFiles& TPDFDocument::GetEmbeddedFiles() {
    if (!FCore->EmbeddedFiles)
        FCore->EmbeddedFiles = std::make_unique<TPDFEmbeddedFiles>(*FCore);
    return *FCore->EmbeddedFiles;
}

int TPDFDocument::GetSignaturesCount() const {
    return FCore->Source ? CountSignatures(FCore->Root()) : 0;
}
