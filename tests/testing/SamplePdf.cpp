#include "testing/SamplePdf.h"

#include <QFile>
#include <QList>
#include <QProcess>

namespace {

/// Collects numbered objects and writes the file with its table (ISO 32000-1, 7.5).
class TObjectFile {
public:
    int Add(const QByteArray& body) {
        FOffsets.append(FData.size());
        FData += QByteArray::number(FOffsets.size()) + " 0 obj\n" + body + "\nendobj\n";
        return int(FOffsets.size());
    }
    [[nodiscard]] QByteArray Finish(const QByteArray& trailer) {
        const qsizetype table = FData.size();
        FData += "xref\n0 " + QByteArray::number(FOffsets.size() + 1) + "\n0000000000 65535 f \n";
        for (const qsizetype offset : std::as_const(FOffsets))
            FData += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
        return FData + "trailer\n<< /Size " + QByteArray::number(FOffsets.size() + 1) + trailer +
               " >>\nstartxref\n" + QByteArray::number(table) + "\n%%EOF\n";
    }

private:
    QByteArray FData = "%PDF-1.4\n";
    QList<qsizetype> FOffsets;
};

QByteArray Document(int pages, const TSamplePdf& options) {
    // Catalog, page tree, font and information stand first; each page then takes two objects.
    constexpr int FirstPage = 5;
    QByteArray kids;
    for (int i = 0; i < pages; ++i)
        kids += QByteArray::number(FirstPage + 2 * i) + " 0 R ";
    TObjectFile file;
    file.Add("<< /Type /Catalog /Pages 2 0 R >>");
    file.Add("<< /Type /Pages /Count " + QByteArray::number(pages) + " /Kids [ " + kids + "] >>");
    file.Add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    file.Add(options.Title.isEmpty() ? "<< >>" : "<< /Title (" + options.Title.toLatin1() + ") >>");
    for (int i = 1; i <= pages; ++i) {
        const QByteArray content = "BT /F1 24 Tf 72 720 Td (Page " + QByteArray::number(i) + ") Tj ET";
        [[maybe_unused]] const int page = file.Add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] "
                                                   "/Resources << /Font << /F1 3 0 R >> >> /Contents " +
                                                   QByteArray::number(FirstPage + 2 * i - 1) + " 0 R >>");
        Q_ASSERT(page == FirstPage + 2 * i - 2);
        file.Add("<< /Length " + QByteArray::number(content.size()) + " >>\nstream\n" + content +
                 "\nendstream");
    }
    return file.Finish(" /Root 1 0 R /Info 4 0 R");
}

void WriteFile(const string& path, const QByteArray& data) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size())
        qFatal("cannot write %s", qUtf8Printable(path));
}

} // namespace

void MakePdf(const string& path, int pages, const TSamplePdf& options) {
    WriteFile(path, Document(pages, options));
    if (options.UserPassword.isEmpty() && options.OwnerPassword.isEmpty())
        return;
    const int done = QProcess::execute("qpdf", {"--encrypt", options.UserPassword, options.OwnerPassword,
                                                "256", "--", "--replace-input", path});
    if (done != 0)
        qFatal("cannot protect %s", qUtf8Printable(path));
}
