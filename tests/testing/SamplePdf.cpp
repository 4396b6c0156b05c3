#include "testing/SamplePdf.h"

#include <QFile>
#include <QProcess>

QByteArray PdfOf(const QList<QByteArray>& objects, const QByteArray& trailerEntries) {
    QByteArray pdf = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
    QByteArray table;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        table += QByteArray::number(pdf.size()).rightJustified(10, '0') + " 00000 n \n";
        pdf += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const QByteArray size = QByteArray::number(objects.size() + 1);
    const QByteArray start = QByteArray::number(pdf.size());
    return pdf + "xref\n0 " + size + "\n0000000000 65535 f \n" + table + "trailer\n<< /Root 1 0 R /Size " +
           size + " " + trailerEntries + " >>\nstartxref\n" + start + "\n%%EOF\n";
}

QByteArray StreamOf(const QByteArray& data, const QByteArray& entries) {
    return "<< /Length " + QByteArray::number(data.size()) + " " + entries + " >>\nstream\n" + data +
           "\nendstream";
}

QByteArray SamplePdf(int pages, const TSampleOptions& options) {
    constexpr int FirstPage = 5; // behind catalog, page tree, font and outlines; then three objects a page
    const auto page = [](int i) { return QByteArray::number(FirstPage + 3 * i) + " 0 R"; };
    const auto item = [](int i) { return QByteArray::number(FirstPage + 3 * i + 2) + " 0 R"; };
    QList<QByteArray> objects(4);
    QByteArray kids;
    for (int i = 0; i < pages; ++i) {
        const QByteArray number = QByteArray::number(i + 1);
        kids += page(i) + ' ';
        const QByteArray link = "/Annots [<< /Type /Annot /Subtype /Link /Rect [0 0 50 50] /Dest [" +
                                page((i + 1) % pages) + " /Fit] >>]";
        objects << "<< /Type /Page /Parent 2 0 R /MediaBox [" + options.MediaBox +
                       "] /Resources << /Font << /F1 3 0 R >> >> /Contents " +
                       QByteArray::number(FirstPage + 3 * i + 1) + " 0 R " + options.PageEntries + ' ' +
                       (options.Links ? link : QByteArray()) + " >>"
                << StreamOf("BT /F1 24 Tf 72 400 Td (Page " + number + ") Tj ET")
                << "<< /Title (Outline " + number + ") /Parent 4 0 R /Dest [" + page(i) + " /Fit]" +
                       (i > 0 ? " /Prev " + item(i - 1) : QByteArray()) +
                       (i + 1 < pages ? " /Next " + item(i + 1) : QByteArray()) + " >>";
    }
    objects[0] =
        QByteArray("<< /Type /Catalog /Pages 2 0 R ") + (options.Outlines ? "/Outlines 4 0 R" : "") + " >>";
    objects[1] = "<< /Type /Pages /Count " + QByteArray::number(pages) + " /Kids [" + kids + "] >>";
    objects[2] = "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>";
    objects[3] = "<< /Type /Outlines /Count " + QByteArray::number(pages) + " /First " + item(0) + " /Last " +
                 item(pages - 1) + " >>";
    if (options.Title.isEmpty())
        return PdfOf(objects);
    objects << "<< /Title (" + options.Title + ") >>";
    return PdfOf(objects, "/Info " + QByteArray::number(objects.size()) + " 0 R");
}

QByteArray SignedPdf() {
    return PdfOf(
        {"<< /Type /Catalog /Pages 2 0 R /AcroForm << /SigFlags 3 /Fields [4 0 R] >> >>",
         "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
         "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Annots [4 0 R] >>",
         "<< /Type /Annot /Subtype /Widget /Rect [0 0 0 0] /P 3 0 R /FT /Sig /T (Signature) /V 5 0 R >>",
         "<< /Type /Sig /Filter /Adobe.PPKLite /SubFilter /adbe.pkcs7.detached /ByteRange [0 10 20 10] "
         "/Contents <00> >>"});
}

void MakePdf(const string& path, int pages, const TSampleOptions& options) {
    QFile file(path);
    const QByteArray data = SamplePdf(pages, options);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size())
        qFatal("cannot write %s", qUtf8Printable(path));
    file.close();
    if (options.UserPassword.isEmpty() && options.OwnerPassword.isEmpty())
        return;
    const QStringList arguments = QStringList{path,
                                              QStringLiteral("--replace-input"),
                                              QStringLiteral("--encrypt"),
                                              options.UserPassword,
                                              options.OwnerPassword,
                                              QStringLiteral("256")} +
                                  options.Restrictions + QStringList{QStringLiteral("--")};
    if (QProcess::execute(QStringLiteral("qpdf"), arguments) != 0)
        qFatal("cannot protect %s", qUtf8Printable(path));
}
