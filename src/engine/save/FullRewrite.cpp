#include "base/OutputFile.h"
#include "engine/core/DocumentCore.h"
#include "engine/save/Attachments.h"
#include "engine/save/Encryption.h"
#include "engine/save/InfoWriter.h"
#include "engine/save/PageContent.h"
#include "engine/save/PageTreeWriter.h"
#include "engine/save/RewriteRules.h"
#include "engine/save/Writer.h"
#include "engine/save/XfaForm.h"

#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFWriter.hh>

#include <cstring>

namespace {

/// libqpdf's output into our file. libqpdf writes a few bytes at a time.
class TLibraryOutput : public Pipeline {
public:
    explicit TLibraryOutput(TOutputFile& file) : Pipeline("file", nullptr), FFile(file) {
        FBuffer.reserve(Size);
    }

    void write(unsigned char const* data, size_t length) override {
        if (FBuffer.size() + length > Size)
            Flush();
        if (length >= Size)
            FFile.Write(data, length);
        else
            FBuffer.append(reinterpret_cast<const char*>(data), length);
    }
    void finish() override {} // also called at the end of each part; Flush is for the end of all

    void Flush() {
        FFile.Write(FBuffer.data(), FBuffer.size());
        FBuffer.clear();
    }

private:
    static constexpr size_t Size = 128 << 10;
    TOutputFile& FFile;
    std::string FBuffer;
};

class TFullRewrite : public TDocumentWriter {
public:
    void Write(TDocumentCore& core, TOutputFile& file) override {
        if (!core.Source)
            core.Source = NewSource();
        WarnOfUnseenPages(core);
        ApplyPages(core);
        ApplyContent(core);
        ApplyInfo(core);
        ApplyAttachments(core);
        ApplyRewriteRules(core);
        WriteObjects(core, file);
    }

private:
    /// The file's own, or what was added needs, or what pages that were copied may need.
    static void RequireVersion(const TDocumentCore& core, QPDFWriter& writer) {
        const int drawn = core.Drawing ? core.Drawing->MinorVersion() : 0;
        writer.setMinimumPDFVersion(PDFVersion(1, std::max(core.MinorVersion, drawn)));
        for (const auto& copied : core.Source->Kept)
            if (const PDFVersion version = copied->Pdf->getVersionAsPDFVersion(); version < PDFVersion(2, 1))
                writer.setMinimumPDFVersion(version); // a header may also say nonsense
    }

    static void WriteObjects(const TDocumentCore& core, TOutputFile& file) {
        // The library writes how many objects there are only if the file, which may be damaged, said so.
        QPDFObjectHandle trailer = core.Source->Pdf->getTrailer();
        if (!trailer.hasKey("/Size"))
            trailer.replaceKey("/Size", QPDFObjectHandle::newInteger(0));
        TLibraryOutput output(file);
        QPDFWriter writer(*core.Source->Pdf);
        writer.setOutputPipeline(&output);
        writer.setCompressStreams(false);
        writer.setDecodeLevel(qpdf_dl_none);
        writer.setObjectStreamMode(qpdf_o_preserve);
        RequireVersion(core, writer);
        if (core.Protection == TProtection::Encrypt)
            SetEncryption(writer, core);
        else if (core.Protection == TProtection::Remove)
            writer.setPreserveEncryption(false);
        writer.write();
        output.Flush();
    }
};

} // namespace

std::unique_ptr<TDocumentWriter> NewFullRewrite() {
    return std::make_unique<TFullRewrite>();
}
