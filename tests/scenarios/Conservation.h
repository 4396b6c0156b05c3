#pragma once
// The promise of the run, looked at from outside: every byte sequence that was dropped is still whole, once,
// and no result under a final name is ever half a file.
#include "agent/FolderMark.h"
#include "engine/document/Document.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

#include <QMap>

struct TConservation {
    int Lost = 0;         ///< dropped contents of which no whole copy is left
    int SecondCopies = 0; ///< dropped contents of which there are two
    int MoreCopies = 0;   ///< of which there are more: never right
    int BadResults = 0;   ///< files in output/ that are not whole
    int Left = 0;         ///< still in the folder, or taken out of it and not yet settled
    int Results = 0;
    int Hidden = 0; ///< what a run should take away: temporaries, claim folders
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
        const auto count = [&](const string& folder, bool left) {
            for (const string& name : Files(folder)) {
                ++copies[Contents(FFolder + folder + u'/' + name)];
                result.Left += left ? 1 : 0;
            }
        };
        count({}, /*left=*/true);
        count("/process", /*left=*/false);
        count("/Error", /*left=*/false);
        for (const char* folder : {"", "/process", "/output", "/Error"})
            for (const string& name : Hidden(folder)) {
                count(folder + (u'/' + name), /*left=*/true);
                ++result.Hidden;
            }
        for (const QByteArray& contents : FContents) {
            const int found = copies.value(contents);
            result.Lost += found == 0 ? 1 : 0;
            result.SecondCopies += found == 2 ? 1 : 0;
            result.MoreCopies += found > 2 ? 1 : 0;
        }
        for (const string& name : Files("/output")) {
            result.BadResults += IsWholePdf(FFolder + "/output/" + name) ? 0 : 1;
            ++result.Results;
        }
        return result;
    }

private:
    [[nodiscard]] QStringList Files(const string& folder) const {
        return QDir(FFolder + folder).entryList(QDir::Files); // hidden temporaries are no one's files
    }
    [[nodiscard]] QStringList Hidden(const string& folder) const {
        QStringList names =
            QDir(FFolder + folder).entryList({".morvane-*"}, QDir::AllEntries | QDir::Hidden | QDir::System);
        names.removeOne(QLatin1String(FolderMarkFile)); // on a share
        return names;
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
