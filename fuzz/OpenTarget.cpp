// A PDF file: opened, walked through, drawn on and saved. What was saved opens again with as many pages.
#include "base/PartFile.h"
#include "engine/core/EmbeddedFiles.h"
#include "engine/document/Document.h"
#include "engine/layers/LayerImage.h"
#include "engine/layers/LayerText.h"
#include "fuzz/Target.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

constexpr int MaxPages = 200; // small files can claim many; the first ones tell enough

void Walk(TZQPDFDocument& document) {
    const int pages = std::min(document.GetPageCount(), MaxPages);
    for (int i = 0; i < pages; ++i) {
        const TZQPDFPage& page = document.Pages().getItem(i);
        Require(page.GetWidth() >= 0 && page.GetHeight() >= 0, "a page has no size");
        static_cast<void>(document.PageTree().GetPageAttributes(i + 1));
    }
    static_cast<void>(document.GetSignaturesCount());
    static_cast<void>(document.GetXMLMetaData());
    static_cast<void>(document.GetInfoString("Title"));
    static_cast<void>(document.GetPageMode());
    static_cast<void>(document.GetEmbeddedFiles().Names());
}

/// The smallest picture, of one pixel.
string PictureIn(const QTemporaryDir& folder) {
    const string path = folder.filePath(QStringLiteral("a.pgm"));
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write("P5 1 1 255\nx") > 0,
            "the picture can't be written");
    return path;
}

void Change(TZQPDFDocument& document, const string& picture) {
    (new TZQPDFImage(&document.Pages().getItem(0).Layers()))->LoadFromFile(picture); // the collection's
    (new TZQPDFText(&document.Pages().getItem(0).Layers()))->SetText(QStringLiteral("a"));
    document.GetEmbeddedFiles().Add(picture, {}, {}, {});
    document.GetEmbeddedFiles().Update();
    document.SetInfoString("Title", QStringLiteral("t"), false /* keepExisting */);
    document.RotatePages(QStringLiteral("1"), 90);
    document.InsertPages(1, 1, 100, 100, true /* before */);
    document.ImportPagesFrom(document, "2", -1);
    document.DeletePageRange(QStringLiteral("1"));
}

void Run(const string& path, const string& picture, const string& output) {
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(path, {});
    Walk(document);
    if (document.GetPageCount() <= MaxPages)
        Change(document, picture);
    document.SaveToPath(output, true /* keepSource */, false /* takeName */);
    TZQPDFDocument again(nullptr);
    again.OpenFromFile(output, {});
    Require(again.GetPageCount() == document.GetPageCount(), "pages came or went by saving");
}

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    static const QTemporaryDir folder;
    static const string picture = PictureIn(folder);
    SetFileSync(FileSync::Off);
    const TInputFile input(data, size);
    try {
        Run(input.Path(), picture, folder.filePath(QStringLiteral("out.pdf")));
    } catch (const Exception&) {
    }
    return 0;
}
