// What isn't worked on comes out as it went in.
#include "engine/CorpusFiles.h"
#include "engine/document/Document.h"
#include "engine/layers/LayerText.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

namespace {

/// Object numbers change with each save, and nothing refers to them from outside.
QJsonValue WithoutNumbers(const QJsonValue& value) {
    static const QRegularExpression reference("\\b\\d+ \\d+ R\\b");
    if (value.isString())
        return value.toString().replace(reference, "R");
    if (value.isArray()) {
        QJsonArray items;
        for (const QJsonValue& item : value.toArray())
            items.append(WithoutNumbers(item));
        return items;
    }
    if (!value.isObject())
        return value;
    QJsonObject entries;
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        if (!reference.match(entry.key()).hasMatch())
            entries.insert(entry.key(), WithoutNumbers(entry.value()));
    return entries;
}

/// Texts and attribute values of the packet, but for the dates that each save renews.
QByteArray XmpValues(const QByteArray& packet) {
    QXmlStreamReader reader(QString::fromUtf8(packet));
    QStringList values;
    QStringView name;
    const auto add = [&](QStringView text) {
        if (name != u"ModifyDate" && name != u"MetadataDate" && !text.trimmed().isEmpty())
            values.append(name.toString() + u'=' + text.toString().simplified());
    };
    while (!reader.atEnd())
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            for (const QXmlStreamAttribute& attribute : reader.attributes()) {
                name = attribute.name();
                add(attribute.value());
            }
            name = reader.name();
            break;
        case QXmlStreamReader::Characters:
            add(reader.text());
            break;
        default:
            break;
        }
    values.sort();
    return values.join(u'\n').toUtf8();
}

/// The parts of a document that adding text must not touch, as text that can be compared.
QMap<QString, QByteArray> PartsOf(const string& path) {
    QMap<QString, QByteArray> parts;
    const QJsonObject json = PdfJson(path);
    for (const char* part : {"outlines", "acroform", "attachments", "pagelabels"})
        parts[part] =
            QJsonDocument(QJsonObject{{"part", WithoutNumbers(json.value(QLatin1String(part)))}}).toJson();
    int links = 0;
    int structureElements = 0;
    for (const QJsonValue& object : json.value("qpdf").toArray().at(1).toObject()) {
        const QJsonObject dict = object.toObject().value("value").toObject();
        links += dict.value("/Subtype").toString() == u"/Link";
        structureElements += dict.contains("/S") && dict.contains("/P") && dict.contains("/K");
    }
    parts["links"] = QByteArray::number(links);
    parts["tags"] = QByteArray::number(structureElements);
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(path, {});
    parts["xmp"] = XmpValues(document.GetXMLMetaData());
    return parts;
}

TEST_F(TCorpus, AddingTextKeepsEverythingElse) {
    constexpr int MostPages = 1000; // qpdf's description of more takes minutes
    const TWorkspace files;
    const string out = files.Path("out.pdf");
    int compared = 0;
    for (const TCorpusFile& file : CorpusFiles({"ok"})) {
        SCOPED_TRACE(file.Path.toStdString());
        if (file.Pages >= MostPages)
            continue;
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(file.Path, {});
        for (int i = 0; i < document.GetPageCount(); ++i)
            (new TZQPDFText(&document.Pages().getItem(i).Layers()))->SetText("added");
        document.SaveToPath(out, /*keepSource*/ true, /*takeName*/ false);
        EXPECT_LE(QpdfCheck(out), file.QpdfExit);
        const auto before = PartsOf(file.Path);
        const auto after = PartsOf(out);
        for (const QString& part : before.keys())
            EXPECT_EQ(before[part], after[part]) << part.toStdString();
        ++compared;
    }
    EXPECT_GT(compared, HasCorpus() ? 40 : 2);
}

TEST(TPreservation, OnePageOfManyTakesItsOwnPictureOnly) {
    const TWorkspace files;
    constexpr int Pages = 300;
    constexpr int PictureBytes = 4000;
    QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>", {}, {}}; // the resources are all pages' own
    QByteArray kids;
    QByteArray pictures;
    for (int i = 0; i < Pages; ++i) {
        const QByteArray number = QByteArray::number(i);
        const auto reference = [](qsizetype n) { return QByteArray::number(n) + " 0 R "; };
        kids += reference(objects.size() + 1);
        pictures += "/Im" + number + ' ' + reference(objects.size() + 3);
        objects << "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 100 100] /Resources 3 0 R /Contents " +
                       reference(objects.size() + 2) + ">>"
                << StreamOf("100 0 0 100 0 0 cm /Im" + number + " Do")
                << StreamOf(QByteArray(PictureBytes, char('A' + i % 26)),
                            "/Type /XObject /Subtype /Image /Width 80 /Height 50 /BitsPerComponent 8 "
                            "/ColorSpace /DeviceGray");
    }
    objects[1] = "<< /Type /Pages /Count " + QByteArray::number(Pages) + " /Kids [" + kids + "] >>";
    objects[2] = "<< /XObject << " + pictures + ">> >>";
    files.Write("in.pdf", PdfOf(objects));
    TZQPDFDocument source(nullptr);
    source.OpenFromFile(files.Path("in.pdf"), {});
    TZQPDFDocument target(nullptr);
    ASSERT_EQ(target.ImportPagesFrom(source, "150", -1), 1);
    target.DeletePage(0);
    const string out = files.Path("out.pdf");
    target.SaveCopyToFile(out, /*keepSource*/ true, /*takeName*/ false);
    EXPECT_EQ(QpdfCheck(out), 0);
    EXPECT_EQ(CountOfType(out, "/XObject"), 1);
    EXPECT_LT(QFileInfo(out).size(), 2 * PictureBytes);
}

} // namespace
