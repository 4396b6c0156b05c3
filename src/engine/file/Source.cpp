#include "engine/file/Source.h"

#include "base/Interrupt.h"
#include "engine/decode/DecodeBudget.h"
#include "engine/file/CrossReferences.h"
#include "engine/file/Teardown.h"
#include "engine/pdf/Numbers.h"
#include "engine/pdf/Passwords.h"

#include <qpdf/QPDFLogger.hh>

#include <mutex>

namespace {

constexpr int HeaderSearch = 1024; // readers look for "%PDF-" in the first 1,024 bytes

string Quoted(const string& doing, const string& path, const string& what) {
    return QStringLiteral("Cannot %1 \"%2\": %3").arg(doing, path, what);
}

bool HasHeader(TFileInput& input) {
    char head[HeaderSearch];
    input.seek(0, SEEK_SET);
    const size_t size = input.read(head, sizeof head);
    return QByteArrayView(head, qsizetype(size)).contains("%PDF-");
}

/// What the library has to say of objects that belong to no document goes to standard error, without a name.
void SetUpLibrary() {
    InstallCountingFilters();
    const auto logger = QPDFLogger::defaultLogger();
    logger->setError(logger->discard());
}

std::shared_ptr<QPDF> NewQpdf() {
    static std::once_flag setUp;
    std::call_once(setUp, SetUpLibrary);
    auto pdf = QPDF::create();
    pdf->setSuppressWarnings(true);
    return pdf;
}

void Read(TPDFSource& source, const std::string& password) {
    source.Pdf = NewQpdf();
    source.Password = NarrowString::fromStdString(password);
    source.Input->rewind();
    source.Pdf->processInputSource(source.Input, password.c_str());
}

/// Tries each spelling of the password.
void ReadWithPassword(TPDFSource& source, const NarrowString& password) {
    const auto spellings = PasswordSpellings(password);
    for (size_t i = 0;; ++i) {
        try {
            return Read(source, spellings[i]);
        } catch (const QPDFExc& e) {
            if (e.getErrorCode() != qpdf_e_password || i + 1 == spellings.size())
                throw;
        }
    }
}

EPDFError OpenError(const std::exception& e, TPDFSource& source, const NarrowString& password) {
    const auto* own = dynamic_cast<const QPDFExc*>(&e);
    const qpdf_error_code_e code = own ? own->getErrorCode() : qpdf_e_internal;
    if (code == qpdf_e_password && password.isEmpty())
        return EPDFError(Quoted("open", source.Path, "needs a password"), TPDFErrorKind::NeedsPassword);
    if (code == qpdf_e_password)
        return EPDFError(Quoted("open", source.Path, "the password is wrong"), TPDFErrorKind::WrongPassword);
    if (code == qpdf_e_unsupported)
        return EPDFError(Quoted("open", source.Path, "it is protected in a way that no password opens"),
                         TPDFErrorKind::Unsupported);
    if (!HasHeader(*source.Input))
        return EPDFError(Quoted("open", source.Path, "not a PDF file"), TPDFErrorKind::NotPdf);
    return EPDFError(Quoted("open", source.Path, "damaged: no pages can be read"), TPDFErrorKind::Damaged);
}

/// What the object streams and cross-reference streams of a file may decode to. Objects take far more memory
/// than their text, so that this is not generous beyond what files are.
TDecodeBudget StructureBudget(const TPDFSource& source) {
    constexpr qint64 Least = 16 << 20;
    constexpr qint64 PerStoredByte = 16;
    const qint64 stored = StoredBytes(source);
    return {Least + stored, 2 * Least + PerStoredByte * stored};
}

/// A repaired file may have lost what its page tree leads to.
void WarnOfLostPages(TPDFSource& source) {
    const TPageWalk& walk = source.Walk;
    const qint64 lost = std::max(walk.Unreadable, walk.Promised - qint64(walk.Pages.size()));
    if (lost > 0)
        source.Warnings.Add(TWarningKind::DamagePagesLost,
                            QStringLiteral("%1 pages that the page tree names can't be read; %2 can.")
                                .arg(lost)
                                .arg(walk.Pages.size()));
}

} // namespace

TPDFSource::~TPDFSource() {
    constexpr qint64 LargeFile = 4 << 20;
    constexpr size_t ManyPages = 1000;
    const bool large = Walk.Pages.size() > ManyPages || (Input && Input->Info().st_size > LargeFile);
    if (!large || !Pdf)
        return;
    Walk.Pages.clear();
    DisposeLater(std::move(Pdf));
}

void TPDFSource::CollectWarnings() {
    for (const QPDFExc& warning : Pdf->getWarnings())
        Warnings.Add(TWarningKind::DamageRepaired, QString::fromUtf8(warning.what()));
}

TPDFSourcePtr OpenSource(const string& path, const NarrowString& password, int descriptor) {
    RequireNoNul("The password", Widen(password)); // the library takes what stands before it
    auto source = std::make_shared<TPDFSource>();
    source->Path = path;
    source->Input = std::make_shared<TFileInput>(path, descriptor);
    RequireModestTable(*source->Input, path);
    TDecodeBudget budget = StructureBudget(*source);
    try {
        const TDecodeScope scope(budget);
        ReadWithPassword(*source, password);
        source->Walk = WalkPages(*source->Pdf);
    } catch (const std::exception& e) {
        source->Input->RequireSound();
        budget.RequireKept(Quoted("open", path, "its objects"));
        throw OpenError(e, *source, password);
    }
    source->Input->RequireSound();
    budget.RequireKept(Quoted("open", path, "its objects"));
    if (source->Walk.Pages.empty())
        throw EPDFError(Quoted("open", path, "damaged: no pages can be read"), TPDFErrorKind::Damaged);
    source->CollectWarnings();
    WarnOfLostPages(*source);
    return source;
}

qint64 StoredBytes(const TPDFSource& source) {
    return source.Input ? source.Input->StoredBytes() : 0;
}

TPDFSourcePtr NewSource() {
    auto source = std::make_shared<TPDFSource>();
    source->Pdf = NewQpdf();
    source->Pdf->emptyPDF();
    source->Walk.Irregular = true;
    return source;
}

EPDFError Translated(const std::exception& e, const string& doing, const string& path) {
    const auto* own = dynamic_cast<const QPDFExc*>(&e);
    const string detail = QString::fromStdString(own ? own->getMessageDetail() : std::string(e.what()));
    return EPDFError(Quoted(doing, path, detail));
}
