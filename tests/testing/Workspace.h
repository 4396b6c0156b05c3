#pragma once
// The vocabulary of tests that work on files: a folder of their own, contents in and out, other programs.
#include "base/Text.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// How a failing expectation shows texts.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QStringList& texts, std::ostream* out) {
    PrintTo(texts.join(u'|'), out);
}
inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << '"' << bytes.toStdString() << '"';
}

/// A folder that goes with the test.
class TWorkspace {
public:
    [[nodiscard]] string Path(const string& name = {}) const { return FFolder.path() + u'/' + name; }

    string Write(const string& name, const QByteArray& contents) const {
        const string path = Path(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        file.write(contents);
        return path;
    }
    [[nodiscard]] QByteArray Read(const string& name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] bool Has(const string& name) const { return QFileInfo(Path(name)).isFile(); }
    /// Names of everything in a subfolder, hidden files too, sorted.
    [[nodiscard]] QStringList Names(const string& folder = {}) const {
        return QDir(Path(folder))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

private:
    QTemporaryDir FFolder;
};

struct TProgramResult {
    int Exit = -1;
    QByteArray Out;
    QByteArray Errors;
};

/// Runs another program to its end, at most a minute.
inline TProgramResult RunProgram(const string& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    TProgramResult result;
    if (process.waitForFinished(60'000) && process.exitStatus() == QProcess::NormalExit)
        result.Exit = process.exitCode();
    result.Out = process.readAllStandardOutput();
    result.Errors = process.readAllStandardError();
    return result;
}
