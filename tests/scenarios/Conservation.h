#pragma once
// The promise of the run, looked at from outside: every byte sequence that was dropped is still whole, and no
// result under a final name is ever half a file.
#include "engine/Document.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <QMap>

struct TConservation {
    int Lost = 0;         ///< dropped contents of which no whole copy is left
    int SecondCopies = 0; ///< dropped contents of which there are two
    int MoreCopies = 0;   ///< of which there are more: never right
    int BadResults = 0;   ///< files in output/ that are not whole
    int Left = 0;         ///< still in the folder
};

/// Drops files of distinct contents into a folder and later looks where they are.
class TDrops {
public:
    explicit TDrops(const string& folder) : FFolder(folder) { QDir().mkpath(folder); }

    void Drop(const string& name, int pages = 1) {
        const string path = FFolder + u'/' + name;
        MakePdf(path, pages, {.Title = "drop " + QByteArray::number(FContents.size())});
        FContents.append(Contents(path));
    }
    void DropText(const string& name, const QByteArray& text) {
        QFile file(FFolder + u'/' + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        FContents.append(text);
    }

    [[nodiscard]] TConservation Look() const {
        QMap<QByteArray, int> copies;
        TConservation result;
        for (const char* folder : {"", "/process", "/Error"})
            for (const string& name : Files(folder)) {
                ++copies[Contents(FFolder + folder + u'/' + name)];
                result.Left += folder[0] == '\0' ? 1 : 0;
            }
        for (const QByteArray& contents : FContents) {
            const int count = copies.value(contents);
            result.Lost += count == 0 ? 1 : 0;
            result.SecondCopies += count == 2 ? 1 : 0;
            result.MoreCopies += count > 2 ? 1 : 0;
        }
        for (const string& name : Files("/output"))
            result.BadResults += IsWholePdf(FFolder + "/output/" + name) ? 0 : 1;
        return result;
    }

private:
    [[nodiscard]] QStringList Files(const char* folder) const {
        return QDir(FFolder + folder).entryList(QDir::Files); // hidden temporaries are no one's files
    }
    static QByteArray Contents(const string& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static bool IsWholePdf(const string& path) {
        if (!Contents(path).trimmed().endsWith("%%EOF"))
            return false;
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(path, {});
        return document.Warnings().IsEmpty();
    }

    string FFolder;
    QList<QByteArray> FContents;
};
