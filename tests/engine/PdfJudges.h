#pragma once
// What other programs say of a file.
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRectF>
#include <QRegularExpression>

/// Exit status of `qpdf --check`: 0 good, 3 warnings, 2 errors.
inline int QpdfCheck(const string& path, const QStringList& options = {}) {
    return RunProgram("qpdf", options + QStringList{"--check", path}).Exit;
}

/// The text of each page, trimmed.
inline QStringList PageTexts(const string& path, const QStringList& options = {}) {
    const auto result = RunProgram("pdftotext", options + QStringList{path, "-"});
    EXPECT_EQ(result.Exit, 0) << result.Errors.toStdString();
    QStringList pages = QString::fromUtf8(result.Out).split(u'\f');
    pages.removeLast(); // behind the last form feed
    for (QString& page : pages)
        page = page.trimmed();
    return pages;
}

/// A line of `pdfinfo`, as "Title"; empty if there is none.
inline string PdfInfo(const string& path, const string& key, const QStringList& options = {}) {
    const auto result = RunProgram("pdfinfo", options + QStringList{path});
    for (const QString& line : QString::fromUtf8(result.Out).split(u'\n'))
        if (line.startsWith(key + u':'))
            return line.mid(key.size() + 1).trimmed();
    return {};
}

/// The boxes of the words of each page, in user units from the top left of the page as displayed.
inline QList<QHash<string, QRectF>> WordBoxes(const string& path) {
    static const QRegularExpression pattern(
        R"re(xMin="([-\d.]+)" yMin="([-\d.]+)" xMax="([-\d.]+)" yMax="([-\d.]+)">([^<]*)<)re");
    const auto text = QString::fromUtf8(RunProgram("pdftotext", {"-bbox", "-cropbox", path, "-"}).Out);
    QList<QHash<string, QRectF>> pages;
    for (const QString& page : text.split("<page ").mid(1)) {
        pages.append(QHash<string, QRectF>());
        for (const auto& m : pattern.globalMatch(page))
            pages.last()[m.captured(5)] = QRectF(QPointF(m.captured(1).toDouble(), m.captured(2).toDouble()),
                                                 QPointF(m.captured(3).toDouble(), m.captured(4).toDouble()));
    }
    return pages;
}

/// Sections of `qpdf --json`, version 2.
inline QJsonObject PdfJson(const string& path, const QStringList& options = {}) {
    const auto result = RunProgram("qpdf", options + QStringList{"--json=2", path});
    return QJsonDocument::fromJson(result.Out).object();
}

/// The objects of a file by name, as "obj:1 0 R".
inline QJsonObject PdfObjects(const string& path) {
    return PdfJson(path).value("qpdf").toArray().at(1).toObject();
}

/// The dictionary that a reference, as "1 0 R", leads to, also where it is a stream's.
inline QJsonObject DictOf(const QJsonObject& objects, const QJsonValue& reference) {
    const QJsonObject object = objects.value("obj:" + reference.toString()).toObject();
    return object.contains("stream") ? object["stream"].toObject()["dict"].toObject()
                                     : object["value"].toObject();
}

/// How many dictionaries of that /Type are in the file, whether anything leads to them or not.
inline int CountOfType(const string& path, const string& type) {
    const QJsonObject objects = PdfObjects(path);
    int count = 0;
    for (const QString& name : objects.keys())
        count += DictOf(objects, name.mid(4)).value("/Type").toString() == type;
    return count;
}

/// The dictionary of each page in order.
inline QList<QJsonObject> PageDicts(const string& path) {
    const QJsonObject json = PdfJson(path);
    const QJsonObject objects = json.value("qpdf").toArray().at(1).toObject();
    QList<QJsonObject> pages;
    for (const QJsonValue& page : json.value("pages").toArray())
        pages.append(DictOf(objects, page["object"]));
    return pages;
}
