// A page's content: with what closes it behind it, nothing is left open. And as the contents of pages that
// are copied, imported and extracted, each of which then takes a picture.
#include "base/PartFile.h"
#include "engine/content/ContentScan.h"
#include "engine/document/Document.h"
#include "engine/layers/LayerImage.h"
#include "fuzz/Target.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

void Scan(const std::string& content) {
    const TContentBalance balance = ScanContent(content);
    for (const size_t offset : balance.ExcessRestores)
        Require(offset < content.size() && content[offset] == 'Q', "no operator stands there");
    if (balance.CutOff)
        return; // nothing is put behind such content
    const TContentBalance closed = ScanContent(content + '\n' + balance.Closing);
    Require(closed.Closing.empty(), "closed content is still open");
}

QByteArray Stream(const QByteArray& data, const char* entries) {
    return "<< /Length " + QByteArray::number(data.size()) + ' ' + entries + " >> stream\n" + data +
           "\nendstream endobj\n";
}

/// One page, listed twice, whose contents are two streams in a direct array, or one. The last byte of the
/// content chooses how they count as coded. The library finds the objects without a table.
QByteArray PdfOf(const QByteArray& content) {
    static const char* const codings[] = {
        "",
        "/Filter /FlateDecode",
        "/Filter /LZWDecode",
        "/Filter [/RunLengthDecode /LZWDecode]",
        "/Filter /FlateDecode /DecodeParms << /Predictor 12 /Columns 5 >>",
        "/Filter /LZWDecode /DecodeParms << /Predictor 2 /Columns 3 /BitsPerComponent 4 /EarlyChange 0 >>",
    };
    constexpr size_t Codings = std::size(codings);
    const size_t choice = content.isEmpty() ? 0 : size_t(quint8(content.back()));
    const char* coding = codings[choice % Codings];
    const bool split = choice / Codings % 2 == 0;
    const qsizetype half = split ? content.size() / 2 : content.size();
    return "%PDF-1.5\n1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj\n"
           "2 0 obj << /Type /Pages /Count 2 /Kids [3 0 R 3 0 R] >> endobj\n"
           "3 0 obj << /Type /Page /Parent 2 0 R /MediaBox [0 0 400 400] /Contents " +
           QByteArray(split ? "[4 0 R 5 0 R]" : "4 0 R") + " >> endobj\n4 0 obj " +
           Stream(content.left(half), coding) + "5 0 obj " + Stream(content.mid(half), coding) +
           "trailer << /Root 1 0 R /Size 6 >>\n";
}

/// The smallest picture, of one pixel.
string PictureIn(const QTemporaryDir& folder) {
    const string path = folder.filePath(QStringLiteral("a.pgm"));
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write("P5 1 1 255\nx") > 0,
            "the picture can't be written");
    return path;
}

class TPages {
public:
    TPages() : FPicture(PictureIn(FFolder)) { SetFileSync(FileSync::Off); }

    void Try(const string& path) const {
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(path, {});
        TZQPDFDocument into(nullptr);
        into.ImportPagesFrom(document, "1-2", 1);
        TZQPDFDocument extract(nullptr);
        extract.ImportPagesFrom(document, "last", -1);
        extract.DeletePage(0);
        for (TZQPDFDocument* one : {&document, &into, &extract})
            DrawAndSave(*one);
    }

private:
    void DrawAndSave(TZQPDFDocument& document) const {
        for (int i = 0; i < document.GetPageCount(); ++i)
            (new TZQPDFImage(&document.Pages().getItem(i).Layers()))
                ->LoadFromFile(FPicture); // owned by these
        const string output = FFolder.filePath(QStringLiteral("out.pdf"));
        document.SaveToPath(output, true /* keepSource */, false /* takeName */);
        TZQPDFDocument again(nullptr);
        again.OpenFromFile(output, {});
        Require(again.GetPageCount() == document.GetPageCount(), "pages came or went by saving");
    }

    const QTemporaryDir FFolder;
    const string FPicture;
};

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    Scan(std::string(reinterpret_cast<const char*>(data), size));
    static const TPages pages;
    const QByteArray pdf = PdfOf(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    const TInputFile input(reinterpret_cast<const unsigned char*>(pdf.constData()), size_t(pdf.size()));
    try {
        pages.Try(input.Path());
    } catch (const Exception&) {
    }
    return 0;
}
