// Pages: insert, delete, crop, rotate, import.
#include "engine/core/DocumentCore.h"
#include "engine/document/Document.h"
#include "engine/file/SourceStore.h"
#include "engine/layers/LayeredPage.h"
#include "engine/pages/PageRange.h"
#include "engine/pdf/Numbers.h"
#include "engine/save/PageContent.h"
#include "engine/save/PageTreeWriter.h"

#include <algorithm>

namespace {

constexpr Double A4Width = 595.276; // 210 x 297 mm
constexpr Double A4Height = 841.89;
constexpr int MaxInserted = 100'000; // blank pages in one call

using TItems = TZQPDFPages::TItems;

[[noreturn]] void RaiseLastPage() {
    throw EPDFError(QStringLiteral("A document must keep at least one page."));
}

std::unique_ptr<TZQPDFPage> NewBlankPage(Double width, Double height) {
    return NewPage(BlankPage(width, height));
}

std::vector<int> PagesOf(const string& range, int pageCount) {
    return DistinctPages(TZQPDFPagesRangeSelector(range, pageCount, 1));
}

/// Puts `pages` before the zero-based place `at`.
void Insert(TDocumentCore& core, size_t at, TItems pages) {
    TItems& items = core.Pages.Items();
    items.insert(items.begin() + std::ptrdiff_t(at), std::make_move_iterator(pages.begin()),
                 std::make_move_iterator(pages.end()));
    core.StructureChanged = true;
}

/// Notes what the source will have to lose; the page itself is freed with its item.
void NoteDeleted(TDocumentCore& core, const TPageObject& page) {
    core.StructureChanged = true;
    if (page.Origin == TPageOrigin::Own)
        core.DeletedPages.push_back(page.Dict);
}

/// The data of imported pages is read when they are saved. Of the first few files that is from themselves.
void LimitOpenFiles(TDocumentCore& core, const TPDFSource& imported) {
    constexpr int MostOpen = 64;
    if (++core.OpenedImports <= MostOpen)
        return;
    if (!core.Store)
        core.Store = std::make_shared<TSourceStore>();
    imported.Input->MoveTo(core.Store);
}

/// The crop box that leaves the page without the margins, which are widths on the page as displayed.
TPageBox Cropped(const TPageGeometry& page, const TPDFMargins& margins) {
    const Double right = page.Width() - margins.Right;
    const Double bottom = page.Height() - margins.Bottom;
    if (!(right > margins.Left && bottom > margins.Top))
        return {};
    return page.ToUserSpace(margins.Left, margins.Top, right, bottom);
}

} // namespace

TZQPDFDocument::TZQPDFDocument(TComponent* owner) : TPDFDocument(owner) {
    Core().Pages.Items().push_back(NewBlankPage(A4Width, A4Height));
}

TZQPDFDocument::~TZQPDFDocument() = default;

int TZQPDFDocument::GetPageCount() const {
    return Core().Pages.Count();
}

TZQPDFPages& TZQPDFDocument::Pages() const {
    return Core().Pages;
}

TPDFPageTree& TZQPDFDocument::PageTree() const {
    return Core().PageTree;
}

void TZQPDFDocument::InsertPages(int index, int count, Single width, Single height, bool before) {
    if (count <= 0)
        return;
    if (count > MaxInserted)
        throw EPDFError(QStringLiteral("%1 pages are too many to insert at once.").arg(count));
    RequireLength("Width", Double(width));
    RequireLength("Height", Double(height));
    if (!(width > 0 && height > 0))
        throw EPDFError(QStringLiteral("A page needs a width and a height above 0."));
    TItems pages;
    for (int i = 0; i < count; ++i)
        pages.push_back(NewBlankPage(Double(width), Double(height)));
    const qint64 place = before ? qint64(index) - 1 : index;
    Insert(Core(), size_t(std::clamp<qint64>(place, 0, GetPageCount())), std::move(pages));
    Changed();
}

void TZQPDFDocument::DeletePage(int index) {
    const TPageObject& page = Pages().getItem(index).Object();
    if (GetPageCount() == 1)
        RaiseLastPage();
    NoteDeleted(Core(), page);
    Pages().Items().erase(Pages().Items().begin() + index);
    PageTree().KeepInRange();
    Changed();
}

int TZQPDFDocument::DeletePageRange(const string& range) {
    if (range.trimmed().isEmpty())
        return PageTree().CurrentPage();
    const std::vector<int> pages = PagesOf(range, GetPageCount());
    if (pages.empty())
        return PageTree().CurrentPage();
    if (int(pages.size()) == GetPageCount())
        RaiseLastPage();
    TItems& items = Pages().Items();
    for (const int page : pages) {
        NoteDeleted(Core(), items[size_t(page - 1)]->Object());
        items[size_t(page - 1)].reset();
    }
    std::erase(items, nullptr);
    PageTree().KeepInRange();
    Changed();
    return std::min(pages.front(), GetPageCount());
}

void TZQPDFDocument::CropPages(const string& range, TPDFMargins& margins) {
    RequireLength("Top", margins.Top);
    RequireLength("Left", margins.Left);
    RequireLength("Right", margins.Right);
    RequireLength("Bottom", margins.Bottom);
    std::vector<std::pair<TZQPDFPage*, TPageBox>> cropped;
    for (const int number : PagesOf(range, GetPageCount())) {
        TZQPDFPage& page = Pages().getItem(number - 1);
        const TPageBox box = Cropped(page.Geometry(), margins);
        if (box.IsEmpty())
            throw EPDFError(
                QStringLiteral("Cropping by these margins leaves nothing of page %1.").arg(number));
        cropped.emplace_back(&page, box);
    }
    for (const auto& [page, box] : cropped) {
        page->Object().NewCrop = box;
        page->ResetLayout();
    }
    if (!cropped.empty())
        Changed();
}

void TZQPDFDocument::RotatePages(const string& range, int angle) {
    if (angle % 90 != 0)
        throw EPDFError(QStringLiteral("Pages turn by multiples of 90 degrees, not by %1.").arg(angle));
    const std::vector<int> pages = PagesOf(range, GetPageCount());
    for (const int number : pages) {
        TZQPDFPage& page = Pages().getItem(number - 1);
        page.Object().NewRotation = NormalRotation(qint64(page.Object().Rotation()) + angle);
        page.ResetLayout();
    }
    if (!pages.empty())
        Changed();
}

int TZQPDFDocument::ImportPagesFrom(TZQPDFDocument& source, const NarrowString& range, int index) {
    const int batch = ++Core().LastBatch;
    source.WritePending(range);
    TItems pages;
    for (const int number : TZQPDFPagesRangeSelector(Widen(range), source.GetPageCount(), 1)) {
        const TPageObject& page = source.Pages().getItem(number - 1).Object();
        pages.push_back(NewPage(CopyOf(page, source.Core().Source, batch)));
    }
    const int count = int(pages.size());
    if (count == 0)
        return 0;
    const int place = index == -1 ? GetPageCount() : std::clamp(index - 1, 0, GetPageCount());
    Insert(Core(), size_t(place), std::move(pages));
    Changed();
    return count;
}

/// What was put on a page goes along when the page is copied, so it must be written by then.
void TZQPDFDocument::WritePending(const NarrowString& range) {
    for (const int number : TZQPDFPagesRangeSelector(Widen(range), GetPageCount(), 1)) {
        if (!HasPendingContent(Pages().getItem(number - 1)))
            continue;
        if (!Core().Source)
            Core().Source = NewSource();
        try {
            ApplyPages(Core());
            ApplyContent(Core());
        } catch (const Exception&) {
            throw;
        } catch (const std::exception& e) {
            throw Translated(e, QStringLiteral("copy pages of"), FileName());
        }
        return;
    }
}

void TZQPDFDocument::updateWatermark(TZQPDFXObjectGroup& group) {
    for (const int number : PagesOf(group.PageRange(), GetPageCount()))
        Pages().getItem(number - 1).updateXObject(*this, group);
    Changed();
}

TZQPDFXObjectsCache& TZQPDFDocument::XObjects() {
    return Core().XObjects;
}

bool TZQPDFDocument::ImportPagesFromDocument(const string& fileName, const string& password,
                                             const string& range, int index, bool after) {
    static_cast<void>(after); // on purpose: `index` is already the place behind the page meant
    TZQPDFDocument source(nullptr);
    source.OpenFromFile(fileName, Narrow(password));
    LimitOpenFiles(Core(), *source.Core().Source);
    return ImportPagesFrom(source, Narrow(range), index) > 0;
}

void TZQPDFDocument::RenderToLayers(int page, int dpi) {
    if (dpi != 72)
        throw EPDFError(QStringLiteral("Layers are placed in points, 72 to the inch, not %1.").arg(dpi));
    // The place of the layers on the page is fixed by its geometry at this moment.
    static_cast<void>(Pages().getItem(page).Geometry());
}

void TZQPDFDocument::updatePageMru(int page, const QList<int>& pages) {
    Core().LastUsedPage = pages.isEmpty() ? page : pages.last();
}
