#pragma once
// What other programs say of a file.
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// Exit status of `qpdf --check`: 0 good, 3 warnings, 2 errors.
inline int QpdfCheck(const string& path, const QStringList& options = {}) {
    return RunProgram(QStringLiteral("qpdf"), options + QStringList{QStringLiteral("--check"), path}).Exit;
}

/// The text of each page, trimmed.
inline QStringList PageTexts(const string& path, const QStringList& options = {}) {
    const auto result =
        RunProgram(QStringLiteral("pdftotext"), options + QStringList{path, QStringLiteral("-")});
    EXPECT_EQ(result.Exit, 0) << result.Errors.toStdString();
    QStringList pages = QString::fromUtf8(result.Out).split(u'\f');
    pages.removeLast(); // behind the last form feed
    for (QString& page : pages)
        page = page.trimmed();
    return pages;
}

/// A line of `pdfinfo`, as "Title"; empty if there is none.
inline string PdfInfo(const string& path, const string& key, const QStringList& options = {}) {
    const auto result = RunProgram(QStringLiteral("pdfinfo"), options + QStringList{path});
    for (const QString& line : QString::fromUtf8(result.Out).split(u'\n'))
        if (line.startsWith(key + u':'))
            return line.mid(key.size() + 1).trimmed();
    return {};
}

/// Sections of `qpdf --json`, version 2.
inline QJsonObject PdfJson(const string& path, const QStringList& options = {}) {
    const auto result =
        RunProgram(QStringLiteral("qpdf"), options + QStringList{QStringLiteral("--json=2"), path});
    return QJsonDocument::fromJson(result.Out).object();
}

/// The objects of a file by name, as "obj:1 0 R".
inline QJsonObject PdfObjects(const string& path) {
    return PdfJson(path).value(QStringLiteral("qpdf")).toArray().at(1).toObject();
}

/// How many dictionaries of that /Type are in the file, whether anything leads to them or not.
inline int CountOfType(const string& path, const string& type) {
    int count = 0;
    for (const QJsonValue& object : PdfObjects(path)) {
        QJsonObject value = object.toObject().value(QStringLiteral("value")).toObject();
        if (value.isEmpty())
            value = object.toObject()
                        .value(QStringLiteral("stream"))
                        .toObject()
                        .value(QStringLiteral("dict"))
                        .toObject();
        if (value.value(QStringLiteral("/Type")).toString() == type)
            ++count;
    }
    return count;
}

/// The dictionary of each page in order.
inline QList<QJsonObject> PageDicts(const string& path) {
    const QJsonObject json = PdfJson(path);
    const QJsonObject objects = json.value(QStringLiteral("qpdf")).toArray().at(1).toObject();
    QList<QJsonObject> pages;
    for (const QJsonValue& page : json.value(QStringLiteral("pages")).toArray())
        pages.append(
            objects.value(QStringLiteral("obj:") + page.toObject().value(QStringLiteral("object")).toString())
                .toObject()
                .value(QStringLiteral("value"))
                .toObject());
    return pages;
}
